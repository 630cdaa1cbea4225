#include "tools/invscan/Diff.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <map>
#include <set>
#include <vector>

#include <nlohmann/json.hpp>

#include "common/sys/ChildOutput.h"
#include "common/sys/PosixSystem.h"
#include "common/sys/Portable.h"
#include "common/sys/Spawn.h"
#include "invscan/com/Catalogue.h"
#include "invscan/com/CatalogueChanges.h"

namespace cli {

namespace {

using Json = nlohmann::ordered_json;

const int EXIT_SAME = 0, EXIT_CHANGED = 1, EXIT_TROUBLE = 2;
// Larger than any scan; keeps an endless device from filling memory.
const std::streamsize MAX_SCAN_BYTES = 256L * 1024 * 1024;

void trouble(const std::string& message) { std::fprintf(stderr, "invscan: %s\n", message.c_str()); }

// A name read from a file, fit for a terminal: control characters become '?'.
std::string printable(std::string text)
{
    for (char& c : text)
        if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F) c = '?';
    return text;
}

// One side of the comparison, read as a scan's JSON document.
struct Scan {
    std::string path;
    Json doc;
};

// The scan a capture replays to, from this program run as a child (no
// shell): every replay starts from a fresh process, as a scan on the machine
// did. Its standard error goes to an unlinked file, for the first line.
bool replayCapture(const std::string& self, Scan& scan, std::string& error)
{
    if (self.empty()) {
        error = "cannot find this program to replay " + scan.path;
        return false;
    }
    char errPath[] = "/tmp/invscan-diff-XXXXXX";
    int errFd = mkstemp(errPath);
    int out[2] = {-1, -1};
    if (errFd < 0 || sys::makePipe(out) != 0 || sys::setCloexec(errFd) != 0) {
        error = std::string("cannot replay ") + scan.path + ": " + std::strerror(errno);
        if (errFd >= 0) unlink(errPath);
        sys::closeFd(errFd);
        return false;
    }
    unlink(errPath);
    sys::SpawnRequest request;
    request.argv = {self, "--format", "json", "scan", "--replay", scan.path};
    request.stdoutFd = out[1];
    request.stderrFd = errFd;
    pid_t pid = -1;
    const int started = sys::spawn(request, &pid);
    sys::closeFd(out[1]);
    std::string text;
    if (started == 0) {
        sys::ChildOutput child(pid, out[0], -1, -1, static_cast<size_t>(MAX_SCAN_BYTES));
        out[0] = -1;  // the child's reader closes it
        char buffer[65536];
        long got;
        while ((got = child.read(buffer, sizeof buffer)) > 0) text.append(buffer, static_cast<size_t>(got));
        int status = 0;
        if (child.finish(&status) == sys::ChildOutput::End::Overflowed) text.clear();
    }
    sys::closeFd(out[0]);
    std::string firstError;
    char line[512];
    const ssize_t n = pread(errFd, line, sizeof line - 1, 0);
    sys::closeFd(errFd);
    if (n > 0) firstError.assign(line, static_cast<size_t>(n));
    firstError = firstError.substr(0, firstError.find('\n'));
    scan.doc = Json::parse(text, nullptr, false);
    if (started != 0 || scan.doc.is_discarded()) {
        error = "cannot replay " + scan.path +
                (started ? std::string(": ") + std::strerror(started)
                         : firstError.empty() ? std::string() : ": " + printable(firstError));
        return false;
    }
    return true;
}

bool isOurs(const Json& doc)
{
    if (!doc.is_object() || !doc.contains("invscan") || !doc["invscan"].is_object() || !doc.contains("groups") ||
        !doc["groups"].is_array())
        return false;
    for (const Json& group : doc["groups"])
        if (!group.is_object() || !group.contains("id") || !group["id"].is_number_unsigned()) return false;
    return true;
}

// A JSON scan as it is; a capture or a machine's folder replayed.
bool loadScan(const std::string& path, const std::string& self, Scan& scan, std::string& error)
{
    scan.path = path;
    struct stat info {};
    if (stat(path.c_str(), &info) != 0) {
        error = "cannot read " + path + ": " + std::strerror(errno);
        return false;
    }
    if (S_ISDIR(info.st_mode)) {
        if (access((path + "/machine.txt").c_str(), R_OK) != 0) {
            error = path + " is a folder but no simulated machine (no machine.txt)";
            return false;
        }
        return replayCapture(self, scan, error);
    }
    // Read on the descriptor it checked: a FIFO swapped in after the look
    // above is refused, not waited on.
    std::string text;
    bool cut = false;
    if (!sys::readRegularFile(path.c_str(), text, static_cast<size_t>(MAX_SCAN_BYTES), &cut)) {
        error = "cannot read " + path + ": " +
                (errno == EINVAL ? std::string("not a regular file") : std::string(std::strerror(errno)));
        return false;
    }
    if (cut) {
        error = path + " is too large for a scan";
        return false;
    }
    const size_t first = text.find_first_not_of(" \t\r\n");
    if (first != std::string::npos && text[first] == '{') {
        scan.doc = Json::parse(text, nullptr, false);
        if (scan.doc.is_discarded()) {
            error = path + " is not readable JSON";
            return false;
        }
        if (!isOurs(scan.doc)) {
            error = path + " is JSON but no invscan scan (no \"invscan\" and \"groups\")";
            return false;
        }
        return true;
    }
    if (text.compare(0, std::strlen("invscan-machine"), "invscan-machine") == 0) {
        if (!replayCapture(self, scan, error)) return false;
        if (!isOurs(scan.doc)) {
            error = "the replay of " + path + " gave no invscan scan";
            return false;
        }
        return true;
    }
    error = path + " is neither an invscan JSON scan nor a capture";
    return false;
}

// A group of one scan: its rows when it was scanned, else why not.
struct Side {
    bool present = false;
    std::string status;
    std::vector<const Json*> rows;
    std::vector<std::string> timestamps;
};

struct Group {
    unsigned long id = 0;
    std::string name;
    Side old, now;
};

Side sideOf(const Json& entry)
{
    Side side;
    side.status = entry.value("status", std::string("absent"));
    if (entry.contains("tables") && entry["tables"].is_array()) {
        for (const Json& table : entry["tables"]) {
            if (!table.is_object()) continue;
            side.present = true;
            if (table.contains("timestamp") && table["timestamp"].is_string())
                side.timestamps.push_back(table["timestamp"].get<std::string>());
            if (table.contains("rows") && table["rows"].is_array())
                for (const Json& row : table["rows"]) side.rows.push_back(&row);
        }
    }
    return side;
}

// Groups in the order of OLD, then those only NEW has.
std::vector<Group> pairGroups(const Json& oldDoc, const Json& newDoc)
{
    std::vector<Group> groups;
    std::map<unsigned long, size_t> at;
    auto slot = [&](const Json& entry) -> Group& {
        const unsigned long id = entry["id"].get<unsigned long>();
        auto found = at.find(id);
        if (found != at.end()) return groups[found->second];
        at[id] = groups.size();
        Group g;
        g.id = id;
        // The catalogue's name where it knows the group.
        g.name = getGroupDefinitionFromId(id) || !entry.contains("name") || !entry["name"].is_string()
                     ? getGroupNameFromId(id)
                     : printable(entry["name"].get<std::string>());
        g.old.status = g.now.status = "absent";
        groups.push_back(g);
        return groups.back();
    };
    for (const Json& entry : oldDoc["groups"]) slot(entry).old = sideOf(entry);
    for (const Json& entry : newDoc["groups"]) slot(entry).now = sideOf(entry);
    return groups;
}

// Equal values, whatever the order of an object's members (a JSON scan may
// have been rewritten by another tool).
bool same(const Json& a, const Json& b)
{
    if (a.is_object() && b.is_object()) {
        if (a.size() != b.size()) return false;
        for (auto it = a.begin(); it != a.end(); ++it) {
            auto other = b.find(it.key());
            if (other == b.end() || !same(*it, *other)) return false;
        }
        return true;
    }
    if (a.is_array() && b.is_array()) {
        if (a.size() != b.size()) return false;
        for (size_t i = 0; i < a.size(); ++i)
            if (!same(a[i], b[i])) return false;
        return true;
    }
    return a == b;
}

const Json* attribute(const Json& row, const std::string& name)
{
    if (!row.is_object()) return nullptr;
    auto found = row.find(name);
    return found == row.end() ? nullptr : &*found;
}

// A value as a person reads it: text quoted, an enumeration as "30 (Hard Disk)".
std::string shown(const Json* value)
{
    if (!value) return "(absent)";
    if (value->is_null()) return "(unreadable)";
    if (value->is_object() && value->contains("value") && value->contains("text") && (*value)["text"].is_string())
        return (*value)["value"].dump() + " (" + (*value)["text"].get<std::string>() + ")";
    return value->dump(-1, ' ', false, Json::error_handler_t::replace);
}

// How rows of a group are paired: by the catalogue's key attributes, by the
// group's identity attribute, or by position.
struct Matching {
    std::vector<std::string> names;  // empty: by position
    std::string how;
};

Matching matchingOf(unsigned long groupId)
{
    Matching m;
    const korGroupDef* def = getGroupDefinitionFromId(groupId);
    if (def && def->keys && def->numKeys > 0) {
        for (uint32_t i = 0; i < def->numKeys; ++i)
            if (const char* name = getAttribNameFromId(def, def->keys[i])) m.names.push_back(name);
        m.how = "keys";
    } else if (const unsigned long identity = getIdentityAttribId(groupId)) {
        if (const char* name = getAttribNameFromId(def, identity)) m.names.push_back(name);
        m.how = "identity";
    }
    if (m.names.empty()) m.how = "position";
    return m;
}

// The attribute names to compare: the catalogue's order, then any others.
std::vector<std::string> comparedNames(unsigned long groupId, const Group& g, bool all)
{
    std::vector<std::string> names;
    std::set<std::string> seen;
    const korGroupDef* def = getGroupDefinitionFromId(groupId);
    if (def && def->attribs) {
        for (const korAttribDef* a = def->attribs; a->id != KOR_END; ++a) {
            seen.insert(a->name);
            if (all || !isVolatileAttrib(groupId, a->id)) names.push_back(a->name);
        }
    }
    for (const Side* side : {&g.old, &g.now})
        for (const Json* row : side->rows)
            if (row->is_object())
                for (auto it = row->begin(); it != row->end(); ++it)
                    if (seen.insert(it.key()).second) names.push_back(it.key());
    return names;
}

struct RowChange {
    Json key;          // {name: value} or {"position": n}
    std::string label; // the key as text
    const Json* row = nullptr;
    std::vector<std::pair<std::string, std::pair<const Json*, const Json*>>> attributes;
};

struct GroupDiff {
    const Group* group = nullptr;
    Matching matching;
    std::string onlyIn;  // "OLD" or "NEW" when the other has no table
    std::vector<RowChange> added, removed, changed;
    std::pair<std::string, std::string> timestamps;
    bool timestampChanged = false;
    size_t count() const
    {
        size_t n = onlyIn.empty() ? 0 : 1;
        n += added.size() + removed.size() + (timestampChanged ? 1 : 0);
        for (const RowChange& c : changed) n += c.attributes.size();
        return n;
    }
};

void keyOf(const Matching& m, const Json& row, size_t position, RowChange& change)
{
    if (m.names.empty()) {
        change.key = Json{{"position", position}};
        change.label = "row " + std::to_string(position);
        return;
    }
    change.key = Json::object();
    for (const std::string& name : m.names) {
        const Json* value = attribute(row, name);
        change.key[name] = value ? *value : Json();
        change.label += (change.label.empty() ? "" : ", ") + name + "=" + shown(value);
    }
}

// A few of an added or removed row's values beside its key, so the line says
// which device it is.
std::string summary(const GroupDiff& d, const Json& row)
{
    std::string out;
    int left = 3;
    const korGroupDef* def = getGroupDefinitionFromId(d.group->id);
    if (!def || !def->attribs) return out;
    for (const korAttribDef* a = def->attribs; a->id != KOR_END && left > 0; ++a) {
        bool isKey = false;
        for (const std::string& k : d.matching.names) isKey = isKey || k == a->name;
        const Json* value = attribute(row, a->name);
        if (isKey || !value || value->is_null() || isVolatileAttrib(d.group->id, a->id)) continue;
        if (value->is_string() && value->get<std::string>().empty()) continue;
        out += (out.empty() ? "" : ", ") + std::string(a->name) + "=" + shown(value);
        --left;
    }
    return out;
}

GroupDiff compareGroup(const Group& g, bool all)
{
    GroupDiff d;
    d.group = &g;
    d.matching = matchingOf(g.id);
    if (g.old.present != g.now.present) {
        d.onlyIn = g.old.present ? "OLD" : "NEW";
        return d;
    }
    if (!g.old.present) return d;
    if (all) {
        const std::string o = g.old.timestamps.empty() ? "" : g.old.timestamps.front();
        const std::string n = g.now.timestamps.empty() ? "" : g.now.timestamps.front();
        d.timestamps = {o, n};
        d.timestampChanged = o != n;
    }
    const std::vector<std::string> names = comparedNames(g.id, g, all);
    auto labelOf = [&](const Json& row, size_t position) {
        RowChange c;
        keyOf(d.matching, row, position, c);
        return c;
    };
    auto differences = [&](size_t i, size_t j) {
        std::vector<std::pair<std::string, std::pair<const Json*, const Json*>>> out;
        for (const std::string& name : names) {
            const Json* before = attribute(*g.old.rows[i], name);
            const Json* after = attribute(*g.now.rows[j], name);
            if ((before == nullptr) != (after == nullptr) || (before && !same(*before, *after)))
                out.push_back({name, {before, after}});
        }
        return out;
    };
    // Rows that share a key (zones all carry the host's id) pair by likeness:
    // the pairs with the fewest differences first, ties in row order.
    std::vector<long> pairOf(g.old.rows.size(), -1);
    std::vector<bool> paired(g.now.rows.size(), false);
    std::vector<bool> sharedKey(g.old.rows.size(), false);
    auto pairBy = [&](const Matching& m) {
        std::map<std::string, std::pair<std::vector<size_t>, std::vector<size_t>>> buckets;
        for (size_t i = 0; i < g.old.rows.size(); ++i) {
            RowChange c;
            keyOf(m, *g.old.rows[i], i + 1, c);
            if (pairOf[i] < 0) buckets[c.label].first.push_back(i);
        }
        for (size_t j = 0; j < g.now.rows.size(); ++j) {
            RowChange c;
            keyOf(m, *g.now.rows[j], j + 1, c);
            if (!paired[j]) buckets[c.label].second.push_back(j);
        }
        for (const auto& bucket : buckets) {
            const std::vector<size_t>& olds = bucket.second.first;
            const std::vector<size_t>& news = bucket.second.second;
            std::vector<std::pair<size_t, std::pair<size_t, size_t>>> candidates;
            for (size_t i : olds) {
                sharedKey[i] = sharedKey[i] || olds.size() > 1;
                for (size_t j : news)
                    candidates.push_back({olds.size() == 1 && news.size() == 1 ? 0 : differences(i, j).size(), {i, j}});
            }
            std::sort(candidates.begin(), candidates.end());
            for (const auto& c : candidates) {
                const size_t i = c.second.first, j = c.second.second;
                if (pairOf[i] >= 0 || paired[j]) continue;
                pairOf[i] = static_cast<long>(j);
                paired[j] = true;
            }
        }
    };
    pairBy(d.matching);
    // A row taken out moves the "Index" of those behind it: they pair again
    // by the rest of the key, and show the new index as a change.
    Matching rest = d.matching;
    rest.names.erase(std::remove(rest.names.begin(), rest.names.end(), "Index"), rest.names.end());
    if (!rest.names.empty() && rest.names.size() < d.matching.names.size()) pairBy(rest);
    for (size_t i = 0; i < g.old.rows.size(); ++i) {
        RowChange c = labelOf(*g.old.rows[i], i + 1);
        if (pairOf[i] < 0) {
            c.row = g.old.rows[i];
            d.removed.push_back(std::move(c));
            continue;
        }
        c.attributes = differences(i, static_cast<size_t>(pairOf[i]));
        if (c.attributes.empty()) continue;
        c.row = g.old.rows[i];
        if (!d.matching.names.empty() && sharedKey[i]) {
            const std::string what = summary(d, *c.row);
            c.label += " (row " + std::to_string(i + 1) +
                       (what.empty() ? "" : ": " + what.substr(0, what.find(", "))) + ")";
        }
        d.changed.push_back(std::move(c));
    }
    for (size_t j = 0; j < g.now.rows.size(); ++j) {
        if (paired[j]) continue;
        RowChange c = labelOf(*g.now.rows[j], j + 1);
        c.row = g.now.rows[j];
        d.added.push_back(std::move(c));
    }
    return d;
}

// First row's value of a catalogued attribute, as text; empty when none.
std::string firstValue(const Json& doc, unsigned long groupId, unsigned long attribId)
{
    const char* name = getAttribNameFromId(getGroupDefinitionFromId(groupId), attribId);
    if (!name) return std::string();
    for (const Json& entry : doc["groups"]) {
        if (entry["id"].get<unsigned long>() != groupId) continue;
        const Side side = sideOf(entry);
        if (side.rows.empty()) return std::string();
        const Json* value = attribute(*side.rows.front(), name);
        return value && value->is_string() ? value->get<std::string>() : std::string();
    }
    return std::string();
}

// What tells the two scans' machines apart; empty when nothing does.
std::vector<std::string> machineDifferences(const Json& oldDoc, const Json& newDoc)
{
    std::vector<std::string> out;
    for (const korAttribRef* a = MACHINE_ATTRS_DEF; a->groupId != KOR_END; ++a) {
        const std::string before = firstValue(oldDoc, a->groupId, a->attribId);
        const std::string after = firstValue(newDoc, a->groupId, a->attribId);
        if (before.empty() || after.empty() || before == after) continue;
        const Json b(before), n(after);
        out.push_back(std::string(getGroupNameFromId(a->groupId)) + " " +
                      getAttribNameFromId(getGroupDefinitionFromId(a->groupId), a->attribId) + " " + shown(&b) +
                      " / " + shown(&n));
    }
    return out;
}

std::string versionOf(const Json& doc)
{
    const Json& v = doc["invscan"];
    return v.contains("version") && v["version"].is_string() ? v["version"].get<std::string>() : "?";
}

std::string matchingText(const Matching& m)
{
    if (m.how == "position") return "rows matched by position";
    std::string out = m.how == "keys" ? "rows matched by key " : "rows matched by identity ";
    for (size_t i = 0; i < m.names.size(); ++i) out += (i ? ", " : "") + m.names[i];
    if (m.names.size() > 1 && std::find(m.names.begin(), m.names.end(), "Index") != m.names.end())
        out += " (then without Index)";
    return out;
}

void printText(const Scan& older, const Scan& newer, const std::vector<GroupDiff>& diffs, size_t total,
               const DiffOptions& options, const std::vector<std::string>& machines)
{
    std::printf("--- OLD %s (invscan %s)\n+++ NEW %s (invscan %s)\n", older.path.c_str(), versionOf(older.doc).c_str(),
                newer.path.c_str(), versionOf(newer.doc).c_str());
    for (const std::string& m : machines) std::printf("!!! different machines, compared as asked: %s\n", m.c_str());
    size_t groups = 0;
    for (const GroupDiff& d : diffs) {
        if (d.count() == 0) continue;
        ++groups;
        const Group& g = *d.group;
        if (!d.onlyIn.empty()) {
            const Side& other = d.onlyIn == "OLD" ? g.now : g.old;
            std::printf("%s (group %lu): only in %s (%s: %s)\n", g.name.c_str(), g.id, d.onlyIn.c_str(),
                        d.onlyIn == "OLD" ? "NEW" : "OLD", other.status.c_str());
            continue;
        }
        std::printf("%s (group %lu), %s\n", g.name.c_str(), g.id, matchingText(d.matching).c_str());
        if (d.timestampChanged)
            std::printf("  ~ table time stamp: %s -> %s\n", d.timestamps.first.c_str(), d.timestamps.second.c_str());
        for (const RowChange& c : d.removed)
            std::printf("  - %s: %s\n", c.label.c_str(), summary(d, *c.row).c_str());
        for (const RowChange& c : d.added) std::printf("  + %s: %s\n", c.label.c_str(), summary(d, *c.row).c_str());
        for (const RowChange& c : d.changed)
            for (const auto& a : c.attributes)
                std::printf("  ~ %s: %s: %s -> %s\n", c.label.c_str(), printable(a.first).c_str(),
                            shown(a.second.first).c_str(), shown(a.second.second).c_str());
    }
    if (total == 0)
        std::printf("no change");
    else
        std::printf("%zu change%s in %zu group%s", total, total == 1 ? "" : "s", groups, groups == 1 ? "" : "s");
    std::printf("%s\n", options.all ? "; every attribute compared"
                                    : "; attributes that change on every scan left out (--all compares them)");
}

void printJson(const Scan& older, const Scan& newer, const std::vector<GroupDiff>& diffs, size_t total,
               const DiffOptions& options, const std::vector<std::string>& machines)
{
    Json out{{"old", {{"source", older.path}, {"version", versionOf(older.doc)}}},
             {"new", {{"source", newer.path}, {"version", versionOf(newer.doc)}}},
             {"all", options.all},
             {"different_machines", machines},
             {"changes", total},
             {"groups", Json::array()}};
    for (const GroupDiff& d : diffs) {
        if (d.count() == 0) continue;
        const Group& g = *d.group;
        Json entry{{"id", g.id}, {"name", g.name}};
        if (!d.onlyIn.empty()) {
            entry["only_in"] = d.onlyIn == "OLD" ? "old" : "new";
            entry["other_status"] = (d.onlyIn == "OLD" ? g.now : g.old).status;
            out["groups"].push_back(std::move(entry));
            continue;
        }
        entry["matched_by"] = d.matching.how;
        if (!d.matching.names.empty()) entry["match_attributes"] = d.matching.names;
        if (d.timestampChanged) entry["timestamp"] = {{"old", d.timestamps.first}, {"new", d.timestamps.second}};
        for (const char* kind : {"removed", "added"}) {
            Json rows = Json::array();
            for (const RowChange& c : std::strcmp(kind, "added") == 0 ? d.added : d.removed)
                rows.push_back({{"key", c.key}, {"row", *c.row}});
            entry[kind] = std::move(rows);
        }
        Json changed = Json::array();
        for (const RowChange& c : d.changed) {
            Json attributes = Json::array();
            for (const auto& a : c.attributes)
                attributes.push_back({{"name", a.first},
                                      {"old", a.second.first ? *a.second.first : Json()},
                                      {"new", a.second.second ? *a.second.second : Json()}});
            changed.push_back({{"key", c.key}, {"attributes", std::move(attributes)}});
        }
        entry["changed"] = std::move(changed);
        out["groups"].push_back(std::move(entry));
    }
    std::printf("%s\n", out.dump(2, ' ', false, Json::error_handler_t::replace).c_str());
}

}  // namespace

int runDiff(const DiffOptions& options, const std::string& self)
{
    try {
        Scan older, newer;
        std::string error;
        if (!loadScan(options.oldPath, self, older, error) || !loadScan(options.newPath, self, newer, error)) {
            trouble(error);
            return EXIT_TROUBLE;
        }
        const std::vector<std::string> machines = machineDifferences(older.doc, newer.doc);
        if (!machines.empty() && !options.force) {
            std::string list;
            for (const std::string& m : machines) list += "\n  " + m;
            trouble(options.oldPath + " and " + options.newPath +
                    " are scans of different machines (--force compares them anyway):" + list);
            return EXIT_TROUBLE;
        }
        const std::vector<Group> groups = pairGroups(older.doc, newer.doc);
        std::vector<GroupDiff> diffs;
        size_t total = 0;
        for (const Group& g : groups) {
            diffs.push_back(compareGroup(g, options.all));
            total += diffs.back().count();
        }
        if (options.format == "json")
            printJson(older, newer, diffs, total, options, machines);
        else
            printText(older, newer, diffs, total, options, machines);
        if (std::fflush(stdout) != 0) return EXIT_TROUBLE;
        return total == 0 ? EXIT_SAME : EXIT_CHANGED;
    } catch (const std::exception& e) {
        trouble(std::string("cannot compare the scans: ") + e.what());
        return EXIT_TROUBLE;
    }
}

}  // namespace cli

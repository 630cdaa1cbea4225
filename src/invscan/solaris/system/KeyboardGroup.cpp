#include "invscan/solaris/system/KeyboardGroup.h"

#include <cctype>
#include <cstdlib>

#include "common/sys/SolarisCommands.h"
#include "common/sys/System.h"
#include "common/util/SystemFile.h"
#include "framework/Trace.h"
#include "framework/ZPopen.h"
#include "invscan/com/CatalogueIds.h"
#include "invscan/com/GroupRegistry.h"
#include "invscan/com/RowBuilder.h"
#include "invscan/solaris/system/SystemFacts.h"
#include "common/util/ApiGuard.h"

using systemfacts::trimmed;

namespace {

const char* const kSource = "./../../../src/invscan/solaris/KeyboardGroup";
const char* const kFunction = "getTable()";
#define KBD_TRACE(level, ...) CcLogWrapper::level(getCcLogHw(), __LINE__, kSource, kFunction, __VA_ARGS__)

const char* const kLayouts = sys::solaris::path(sys::solaris::Id::KeyboardLayouts);
const char* const kDefaults = sys::solaris::path(sys::solaris::Id::KbdDefaults);

// A positive count of milliseconds, or -1.
int milliseconds(const std::string& text)
{
    char* end = nullptr;
    const long value = std::strtol(text.c_str(), &end, 10);
    return end != text.c_str() && value > 0 && value < 100000 ? static_cast<int>(value) : -1;
}

bool allDigits(const std::string& text)
{
    if (text.empty()) return false;
    for (char c : text)
        if (!std::isdigit(static_cast<unsigned char>(c))) return false;
    return true;
}

}  // namespace

bool parseKbdOutput(const std::vector<std::string>& lines, KeyboardFacts& facts)
{
    bool any = false;
    for (const std::string& raw : lines) {
        const std::string line = trimmed(raw);
        const size_t equals = line.find('=');
        if (line.empty()) continue;
        if (equals == std::string::npos) {
            // The type's name; kbd's complaints ("kbd: ...") are not one.
            if (facts.type.empty() && line.compare(0, 4, "kbd:") != 0) facts.type = line, any = true;
            continue;
        }
        const std::string key = line.substr(0, equals), value = trimmed(line.substr(equals + 1));
        if (key == "type")
            facts.subType = value;
        else if (key == "layout")
            facts.layout = value.substr(0, value.find(' '));  // "33 (0x21)"
        else if (key == "delay(ms)")
            facts.delayMs = milliseconds(value);
        else if (key == "rate(ms)")
            facts.rateMs = milliseconds(value);
        else
            continue;
        any = true;
    }
    return any;
}

void applyKeyboardDefaults(const std::map<std::string, std::string>& defaults, KeyboardFacts& facts)
{
    auto value = [&](const char* key) {
        auto it = defaults.find(key);
        return it == defaults.end() ? std::string() : it->second;
    };
    if (facts.layout.empty()) facts.layout = value("LAYOUT");
    if (facts.delayMs < 0) facts.delayMs = milliseconds(value("REPEAT_DELAY"));
    if (facts.rateMs < 0) facts.rateMs = milliseconds(value("REPEAT_RATE"));
}

std::string layoutName(sys::System& os, const std::string& layout)
{
    if (!allDigits(layout)) return layout;
    std::string name = layout;
    util::forEachSystemFileLine(
        os, kLayouts,
        [&](const std::string& line) {
            const size_t equals = line.find('=');
            if (equals == std::string::npos || line[0] == '#' || trimmed(line.substr(equals + 1)) != layout) return true;
            name = trimmed(line.substr(0, equals));
            return false;
        },
        1 << 20);
    return name;
}

void shapeKeyboardRow(const KeyboardFacts& facts, KorTable& table)
{
    RowBuilder row(KEYBOARD_GROUP, RowBuilder::Undecodable::Shown);
    row.textIfAny(KBD_TYPE, facts.type);
    row.textIfAny(KBD_SUB_TYPE, facts.subType);
    row.textIfAny(KBD_CODE_PAGE, facts.layout);
    // kbd gives the repeat period; hosts want characters per second.
    if (facts.rateMs > 0) row.number(KBD_CHARACTERS_PER_SECOND, (1000 + facts.rateMs / 2) / facts.rateMs);
    if (facts.delayMs > 0) row.number(KBD_REPEAT_DELAY, facts.delayMs);
    row.addTo(table);
}

KeyboardGroup::KeyboardGroup() : KorGroup(KEYBOARD_GROUP, 1) {}

KorTable* KeyboardGroup::getTable()
{
    return api::guardedTable("KeyboardGroup::getTable()", [&]() -> KorTable* {
        CcLogWrapper::traceMidEntry(getCcLogHw(), __LINE__, kSource, kFunction, "hardware %s", "KeyboardGroup");
        sys::System& os = sys::current();
        KeyboardFacts facts;
        ZPopen kbd(sys::solaris::argv(sys::solaris::Id::Kbd));
        const bool told = kbd.run() == 0 && parseKbdOutput(kbd.lines(), facts);
        if (!told) {
            // A server without a keyboard: kbd cannot open the device.
            KBD_TRACE(traceMIN, "hardware %s %d", "ERROR! kbd -t -l failed, status", kbd.exitStatus());
            return nullptr;
        }
        applyKeyboardDefaults(systemfacts::readSettings(os, kDefaults), facts);
        facts.layout = layoutName(os, facts.layout);
        auto* table = new KorTable(getGroupId(), getGroupVersion());
        shapeKeyboardRow(facts, *table);
        CcLogWrapper::traceMidExit(getCcLogHw(), __LINE__, kSource, kFunction, "hardware %s", "KeyboardGroup");
        return table;
    });
}

INVSCAN_REGISTER_GROUP(KEYBOARD_GROUP, KeyboardGroup);

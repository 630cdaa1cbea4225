#include "invscan/solaris/virtualization/Zone.h"

#include <dlfcn.h>

#include <cctype>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "common/sys/SolarisCommands.h"
#include "common/sys/System.h"
#include "common/sys/ZoneLibraries.h"
#include "common/util/Toolbox.h"
#include "framework/Trace.h"
#include "framework/ZPopen.h"
#include "framework/utils.h"
#include "invscan/com/GroupRegistry.h"
#include "invscan/com/ScanScoped.h"

const char* const Zone::IDENTIFIER_NOT_SET = "-1";
const float Zone::CAPACITY_NOT_AVAILABLE = -1.0f;
const char* const Zone::ZONE_TYPE_ZONE = "Zone";
const char* const Zone::ZONE_TYPE_KERNEL_ZONE = "Kernel-Zone";
const char* const Zone::ZONE_TYPE_UNKNOWN = "Unknown";
const char* const Zone::ZONE_TYPE_UNINITIALIZED = "Uninitialized";
const char* const Zone::ZONE_TYPE_ZONECFG_BRAND_LABELED = "labeled";
const char* const Zone::ZONE_TYPE_ZONECFG_BRAND_SOLARIS10 = "solaris10";
const char* const Zone::ZONE_TYPE_ZONECFG_BRAND_SOLARIS_KZ = "solaris-kz";
const char* const Zone::ZONE_TYPE_ZONECFG_BRAND_SOLARIS = "solaris";
const char* const Zone::ZONE_TYPE_V12N_ENV_XEN = "xen";
const char* const Zone::ZONE_TYPE_V12N_ENV_VIRTUALBOX = "virtualbox";
const char* const Zone::ZONE_TYPE_V12N_ENV_VMWARE = "vmware";
const char* const Zone::ZONE_TYPE_V12N_ENV_KERNEL_ZONE = "kernel-zone";
const char* const Zone::ZONE_TYPE_V12N_ENV_NON_GLOBAL_ZONE = "non-global-zone";
const char* const Zone::ZONE_TYPE_V12N_ENV_LOGICAL_DOMAIN = "logical-domain";
const char* const Zone::ZONE_TYPE_V12N_ENV_KVM = "kvm";
const char* const Zone::ZONE_TYPE_V12N_ENV_UNKNOWN = "unknown";
const char* const Zone::ZONECFG_INFO_PROPNAME_POOL = "pool";
const char* const Zone::ZONECFG_INFO_PROPNAME_BRAND = "brand";
const char* const Zone::ZONECFG_INFO_PROPNAME_HOSTID = "hostid";
const char* const Zone::ZONE_NAMES_PSET = "pset";
const char* const Zone::ZONE_NAMES_GLOBAL_ZONE = "global";
const char* const Zone::LIB_POOL = "libpool.so";
const char* const Zone::LIB_V12N = "libv12n.so.1";
const char* const Zone::LIB_PATH64 = "/usr/lib/64";
const char* const Zone::LIB_PATH = "/usr/lib/";

namespace {

const char* const kSource = "./../../../src/invscan/solaris/Zone";
#define ZONE_TRACE(level, fn, ...) CcLogWrapper::level(getCcLogHw(), __LINE__, kSource, fn, __VA_ARGS__)

// A library opened for one reading step and closed when the step returns.
class Library {
public:
    // By name, then under LIB_PATH, then under LIB_PATH64 joined without a
    // separator (so the path was always built); `noInfo` ends the last trace.
    Library(const char* name, const char* fn, const char* noInfo)
    {
        sys::System& os = sys::current();
        ZONE_TRACE(traceMAX, fn, "Loading %s library", name);
        m_handle = os.dlopen(name, RTLD_NOW);
        if (!m_handle) {
            ZONE_TRACE(traceMAX, fn, "Failed to load %s library, trying another path", name);
            m_handle = os.dlopen((std::string(Zone::LIB_PATH) + name).c_str(), RTLD_NOW);
        }
        if (!m_handle) {
            ZONE_TRACE(traceMAX, fn, "Failed to load %s library, trying another path2", name);
            m_handle = os.dlopen((std::string(Zone::LIB_PATH64) + name).c_str(), RTLD_NOW);
        }
        if (!m_handle) ZONE_TRACE(traceMID, fn, "Failed to load %s library, %s", name, noInfo);
    }
    ~Library()
    {
        if (m_handle) sys::current().dlclose(m_handle);
    }
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;

    bool loaded() const { return m_handle != nullptr; }

    // Looks `symbol` up as a function of type F; false (traced when the
    // caller names itself) when missing.
    template <typename F>
    bool find(const char* symbol, F& out, const char* library = nullptr, const char* fn = nullptr) const
    {
        void* address = sys::current().dlsym(m_handle, symbol);
        std::memcpy(&out, &address, sizeof out);  // object to function pointer, as dlsym's callers must
        if (!address && fn) ZONE_TRACE(traceMIN, fn, "ERROR! Couldn't find '%s' function in %s", symbol, library);
        return address != nullptr;
    }

private:
    void* m_handle = nullptr;
};


void traceZone(const char* fn, const char* what, const Zone::ZoneInfo& z)
{
    ZONE_TRACE(traceMAX, fn,
               "Zone attributes for %s: id=%s, hostid=%s, name='%s', type='%s', typeDisplayed='%s', path='%s', "
               "sharedPoolName='%s', sharedPoolType='%s', sharedPoolCapacity='%f'",
               what, z.id.c_str(), z.hostid.c_str(), z.name.c_str(), z.type.c_str(), z.typeDisplayed.c_str(),
               z.path.c_str(), z.sharedPoolName.c_str(), z.sharedPoolType.c_str(),
               static_cast<double>(z.sharedPoolCapacity));
}

}  // namespace

void Zone::resetZoneInfo(ZoneInfo& info)
{
    info.id = IDENTIFIER_NOT_SET;
    info.hostid = IDENTIFIER_NOT_SET;
    info.name.clear();
    info.type = ZONE_TYPE_UNINITIALIZED;
    info.typeDisplayed.clear();
    info.path.clear();
    info.capacity = CAPACITY_NOT_AVAILABLE;
    info.sharedPoolName.clear();
    info.sharedPoolType.clear();
    info.poolResourceName.clear();
    info.sharedPoolCapacity = CAPACITY_NOT_AVAILABLE;
}

namespace {
ScanScoped<Zone>& scanZoneCache()
{
    static ScanScoped<Zone> zone;
    return zone;
}
void forgetZone() { scanZoneCache().forget(); }
}  // namespace

INVSCAN_AT_SCAN_END(forgetZone);

std::shared_ptr<const Zone> scanZone()
{
    return scanZoneCache().get(sys::current(), [] { return std::make_shared<const Zone>(); });
}

Zone::Zone()
{
    resetZoneInfo(m_info);
    readAllZoneData();
}

bool Zone::isGlobalZone() const
{
    return m_info.name == ZONE_NAMES_GLOBAL_ZONE || m_info.typeDisplayed == ZONE_TYPE_KERNEL_ZONE;
}

bool Zone::isKernelZone() const { return m_info.type == ZONE_TYPE_V12N_ENV_KERNEL_ZONE; }

int Zone::readAllZoneData()
{
    const char* fn = "readAllZoneData()";
    CcLogWrapper::traceMidEntry(getCcLogHw(), __LINE__, kSource, fn, "hardware %s", "Zone");
    if (!Toolbox::getZoneName(m_info.name)) {
        ZONE_TRACE(traceMAX, fn, "zone name='%s', zones NOT detected (insideZone = false)", m_info.name.c_str());
        CcLogWrapper::traceMidExit(getCcLogHw(), __LINE__, kSource, fn, "hardware result=%d", 0);
        return 0;
    }
    ZONE_TRACE(traceMAX, fn, "zone name='%s', zones detected (insideZone = true)", m_info.name.c_str());
    m_insideZone = true;

    long id = -1;
    Toolbox::getZoneId(id);  // its answer stands even when it failed, on purpose
    m_info.id = std::to_string(id);
    const unsigned long hostid = static_cast<unsigned long>(sys::current().gethostid());
    ZONE_TRACE(traceMAX, fn, "hostid=%lu, hex=%x", hostid, static_cast<unsigned>(hostid));
    m_info.hostid = std::to_string(hostid);

    const int result = readZoneType(m_info);
    if (result == 0) {
        setTypeDisplayed(m_info);
    } else {
        ZONE_TRACE(traceMAX, fn,
                   "Failed to read zone type, error=%d. Setting default 'Zone' for a machine inside zone.", result);
        m_info.type = m_info.typeDisplayed = ZONE_TYPE_ZONE;
    }
    readZoneCapacity(m_info.capacity);
    getPoolNameForCurrentProcess(m_info.sharedPoolName);
    if (!m_info.sharedPoolName.empty()) {
        ZONE_TRACE(traceMAX, fn, "Zone shared pool (of current process) is: '%s'", m_info.sharedPoolName.c_str());
        readPoolInfo(m_info);
    }
    readChildZonesInfo();
    traceZone(fn, "local machine", m_info);
    CcLogWrapper::traceMidExit(getCcLogHw(), __LINE__, kSource, fn, "hardware result=%d", result);
    return result;
}

int Zone::readZoneType(ZoneInfo& info)
{
    const char* fn = "readZoneType()";
    Library lib(LIB_V12N, fn, "no v12n info available");
    int result = 0;
    v12n_get_current_env_fn getEnv = nullptr;
    v12n_free_env_fn freeEnv = nullptr;
    v12n_get_env_prop_fn getProp = nullptr;
    v12n_env* env = nullptr;
    if (!lib.loaded()) {
        result = 1;
    } else if (!lib.find("v12n_get_current_env", getEnv, LIB_V12N, fn)) {
        result = 2;
    } else if (!lib.find("v12n_free_env", freeEnv, LIB_V12N, fn)) {
        result = 3;
    } else if (!(env = getEnv())) {
        ZONE_TRACE(traceMIN, fn, "v12n_get_current_env() function failed with errno=%d", errno);
        result = 4;
    } else if (!lib.find("v12n_get_env_prop", getProp, LIB_V12N, fn)) {
        result = 5;
    } else if (char* name = getProp(env, V12N_PROP_NAME)) {
        ZONE_TRACE(traceMAX, fn, "env property V12N_PROP_NAME value:'%s'", name);
        info.type = name;
        std::free(name);
        if (info.type == ZONE_TYPE_V12N_ENV_KERNEL_ZONE) {
            if (char* zoneName = getProp(env, V12N_PROP_KZ_ZONENAME)) {
                ZONE_TRACE(traceMAX, fn, "env property V12N_PROP_KZ_ZONENAME value:'%s'", zoneName);
                ZONE_TRACE(traceMAX, fn, "adjusting zone name from '%s' to '%s'", info.name.c_str(), zoneName);
                info.name = zoneName;
                std::free(zoneName);
            } else {
                ZONE_TRACE(traceMIN, fn, "v12n_get_env_prop() function getting V12N_PROP_KZ_ZONENAME failed with errno=%d",
                           errno);
                result = 7;
            }
        }
    } else {
        ZONE_TRACE(traceMIN, fn, "v12n_get_env_prop() function getting V12N_PROP_NAME failed with errno=%d", errno);
        result = 6;
    }
    if (env) freeEnv(env);
    ZONE_TRACE(traceMAX, fn, "FINISHED with result=%d", result);
    return result;
}

void Zone::setTypeDisplayed(ZoneInfo& info)
{
    const char* fn = "setTypeDisplayed()";
    ZONE_TRACE(traceMAX, fn, "zone type is: '%s'", info.type.c_str());
    if (info.type == ZONE_TYPE_UNINITIALIZED || info.type == ZONE_TYPE_V12N_ENV_UNKNOWN)
        info.typeDisplayed.clear();
    else if (info.type == ZONE_TYPE_V12N_ENV_KERNEL_ZONE || info.type == ZONE_TYPE_ZONECFG_BRAND_SOLARIS_KZ)
        info.typeDisplayed = ZONE_TYPE_KERNEL_ZONE;
    else
        info.typeDisplayed = ZONE_TYPE_ZONE;
    ZONE_TRACE(traceMAX, fn, "zone type displayed that was set is: '%s'", info.typeDisplayed.c_str());
}

int Zone::readZoneCapacity(float& capacity)
{
    const char* fn = "readPoolCapacity()";
    sys::System& os = sys::current();
    capacity = 0;
    uint_t count = 0;
    if (os.pset_info(PS_MYID, nullptr, &count, nullptr) != 0) {
        ZONE_TRACE(traceMIN, fn, "pset_info call 1 failed with errno: %d", errno);
        return 1;
    }
    std::vector<processorid_t> cpus;
    try {
        cpus.resize(count);
    } catch (const std::bad_alloc&) {
        ZONE_TRACE(traceMIN, fn, "%s", "error while allocating cpus list");
        return 2;
    }
    if (os.pset_info(PS_MYID, nullptr, &count, cpus.data()) != 0) {
        ZONE_TRACE(traceMIN, fn, "pset_info call 2 failed with errno: %d", errno);
        return 3;
    }
    // The set may have shrunk between the two calls; never read past the list.
    if (count < cpus.size()) cpus.resize(count);
    for (processorid_t cpu : cpus) {
        const int status = os.p_online(cpu, P_STATUS);
        if (status == -1) {
            ZONE_TRACE(traceMIN, fn, "p_online call failed with errno: %d, reseting lpar capacity to 0", errno);
            capacity = CAPACITY_NOT_AVAILABLE;  // though the text says 0: kept
            return 4;
        }
        if (status == P_ONLINE || status == P_NOINTR) capacity += 1.0f;
    }
    return 0;
}

bool Zone::getMatchedCommandOutput(const std::vector<std::string>& argv, const std::string& regex, std::string& out)
{
    const char* fn = "getMatchedCommandOutput()";
    std::string command;
    for (const std::string& word : argv) command += (command.empty() ? "" : " ") + word;
    ZONE_TRACE(traceMAX, fn, "calling command: '%s'", command.c_str());
    ZPopen run(argv);
    if (run.run() != 0) return false;
    ZONE_TRACE(traceMAX, fn, "'%s' command successfully executed", command.c_str());
    std::string text;
    for (const std::string& line : run.lines()) text += line;
    ZONE_TRACE(traceMAX, fn, "command output: '%s'", text.c_str());
    if (text.empty()) {
        ZONE_TRACE(traceMAX, fn, "Nothing returned on stdout by the '%s' command", command.c_str());
        return true;
    }
    out.clear();
    if (utils::regexMatch(text, regex, out))
        ZONE_TRACE(traceMAX, fn, "string matched by regex in the command output is: '%s'", out.c_str());
    else
        ZONE_TRACE(traceMIN, fn, "NOT matched, command called='%s' with output: '%s'", command.c_str(),
                   text.c_str());
    return true;  // the command ran, whatever the regex found
}

bool Zone::getZonePropertyValue(const std::string& property, const std::string& zoneName, std::string& out)
{
    // A zoneadm line without a name names no zone: zonecfg would only refuse.
    if (zoneName.empty()) return false;
    // Solaris zone names begin with a letter or digit and hold only letters,
    // digits, '-', '_' and '.', at most 64 of them: anything else (a name
    // beginning with '-' would reach zonecfg as an option, a blank would
    // split into more arguments) comes from a broken or hostile listing.
    bool valid = zoneName.size() <= 64 && std::isalnum(static_cast<unsigned char>(zoneName[0]));
    for (const char c : zoneName)
        valid = valid && (std::isalnum(static_cast<unsigned char>(c)) || c == '-' || c == '_' || c == '.');
    if (!valid) {
        ZONE_TRACE(traceMIN, "getZonePropertyValue()", "ERROR! zone name '%s' is no zone name: zonecfg not asked",
                   zoneName.c_str());
        return false;
    }
    return getMatchedCommandOutput(sys::solaris::zonecfgInfo(zoneName, property),
                                   property + ":[[:space:]]+([^[:space:]]*)", out);
}

int Zone::getPoolNameForCurrentProcess(std::string& poolName)
{
    return getMatchedCommandOutput(sys::solaris::poolbindQuery(static_cast<long>(sys::current().getpid())),
                                   "[[:digit:]]+[[:space:]]+([^[:space:]]*)", poolName)
               ? 0
               : 1;
}

int Zone::readPoolInfo(ZoneInfo& info)
{
    const int result = readPoolFacts(info);
    // After the library is closed, whatever the step that ended the read.
    ZONE_TRACE(traceMAX, "readPoolInfo()", "FINISHED with result=%d", result);
    return result;
}

int Zone::readPoolFacts(ZoneInfo& info)
{
    const char* fn = "readPoolInfo()";
    if (info.sharedPoolName.empty()) {
        ZONE_TRACE(traceMAX, fn, "%s", "the shared pool has no name, no information to read");
        return 30;
    }
    ZONE_TRACE(traceMAX, fn, "Getting pool information for pool: '%s'", info.sharedPoolName.c_str());
    Library lib(LIB_POOL, fn, "no pool info available");
    if (!lib.loaded()) return 1;

    pool_error_fn poolError;
    pool_strerror_fn poolStrerror;
    pool_conf_alloc_fn confAlloc;
    pool_conf_open_fn confOpen;
    pool_dynamic_location_fn dynamicLocation;
    pool_get_property_fn getProperty;
    pool_value_alloc_fn valueAlloc;
    pool_value_free_fn valueFree;
    pool_conf_close_fn confClose;
    pool_value_get_string_fn getString;
    pool_get_pool_fn getPool;
    pool_query_pool_resources_fn queryResources;
    pool_resource_to_elem_fn toElem;
    pool_value_get_uint64_fn getUint64;
    // Results 2-8 and 12-18: one per function missing.
    if (!lib.find("pool_error", poolError, LIB_POOL, fn)) return 2;
    if (!lib.find("pool_strerror", poolStrerror, LIB_POOL, fn)) return 3;
    if (!lib.find("pool_conf_alloc", confAlloc, LIB_POOL, fn)) return 4;
    if (!lib.find("pool_conf_open", confOpen, LIB_POOL, fn)) return 5;
    if (!lib.find("pool_dynamic_location", dynamicLocation, LIB_POOL, fn)) return 6;
    if (!lib.find("pool_get_property", getProperty, LIB_POOL, fn)) return 7;
    if (!lib.find("pool_value_alloc", valueAlloc, LIB_POOL, fn)) return 8;

    // 12-18: looked up before the value is made, so that none is made
    // that could not be given back.
    if (!lib.find("pool_value_free", valueFree, LIB_POOL, fn)) return 12;
    if (!lib.find("pool_conf_close", confClose, LIB_POOL, fn)) return 13;
    if (!lib.find("pool_value_get_string", getString, LIB_POOL, fn)) return 14;
    if (!lib.find("pool_get_pool", getPool, LIB_POOL, fn)) return 15;
    if (!lib.find("pool_query_pool_resources", queryResources, LIB_POOL, fn)) return 16;
    if (!lib.find("pool_resource_to_elem", toElem, LIB_POOL, fn)) return 17;
    if (!lib.find("pool_value_get_uint64", getUint64, LIB_POOL, fn)) return 18;

    auto failed = [&](const char* function) {
        const int error = poolError();
        ZONE_TRACE(traceMIN, fn, "ERROR! '%s' failed, pool error: %d, error description: '%s', errno: %d", function,
                   error, poolStrerror(error), errno);
    };
    pool_value* value = valueAlloc();
    if (!value) {
        failed("pool_value_alloc");
        return 11;
    }
    int result = 0;
    pool_conf* conf = nullptr;
    bool open = false;
    if (result == 0) {
        conf = confAlloc();
        if (!conf) {
            failed("pool_conf_alloc");
            result = 9;
        }
    }
    if (result == 0) {
        const char* location = dynamicLocation();
        ZONE_TRACE(traceMAX, fn, "pool dynamic location is: '%s'", location ? location : "");
        open = confOpen(conf, location, PO_RDONLY) == PO_SUCCESS;
        if (!open) {
            failed("pool_conf_open");
            result = 10;
        }
    }
    pool* thePool = nullptr;
    if (result == 0 && !(thePool = getPool(conf, info.sharedPoolName.c_str()))) {
        failed("pool_get_pool");
        result = 19;
    }
    unsigned int count = 0;
    pool_resource** resources = nullptr;
    if (result == 0 && !(resources = queryResources(conf, thePool, &count, nullptr))) {
        failed("pool_query_pool_resources");
        result = 20;
    }
    // One property of the resource as text; `code` when it cannot be read.
    auto readString = [&](pool_elem* elem, const std::string& name, std::string& out, int code) {
        const char* text = nullptr;
        if (getProperty(conf, elem, name.c_str(), value) == POC_INVAL) {
            failed("pool_get_property");
            return code;
        }
        if (getString(value, &text) != PO_SUCCESS || !text) {
            failed("pool_value_get_string");
            return code + 1;
        }
        out = text;  // the text belongs to the value: copied before the value is reused
        return 0;
    };
    for (unsigned int i = 0; result == 0 && i < count; ++i) {
        pool_elem* elem = toElem(conf, resources[i]);
        if ((result = readString(elem, "type", info.sharedPoolType, 21)) != 0) break;
        ZONE_TRACE(traceMAX, fn, "shared pool type is: '%s'", info.sharedPoolType.c_str());
        const std::string nameProperty = info.sharedPoolType + ".name";
        if ((result = readString(elem, nameProperty, info.poolResourceName, 23)) != 0) break;
        ZONE_TRACE(traceMAX, fn, "shared pool %s is: '%s'", nameProperty.c_str(), info.poolResourceName.c_str());
        if (info.sharedPoolType != ZONE_NAMES_PSET) continue;
        const std::string sizeProperty = info.sharedPoolType + ".size";
        uint64_t size = 0;
        if (getProperty(conf, elem, sizeProperty.c_str(), value) == POC_INVAL) {
            failed("pool_get_property");
            result = 25;
        } else if (getUint64(value, &size) != PO_SUCCESS) {
            failed("pool_value_get_uint64");
            result = 26;
        } else {
            ZONE_TRACE(traceMAX, fn, "shared pool %s is: %llu", sizeProperty.c_str(),
                       static_cast<unsigned long long>(size));
            info.sharedPoolCapacity = static_cast<float>(size);
        }
    }
    std::free(resources);  // the library's malloc'd array is the caller's
    valueFree(value);
    if (open) confClose(conf);
    // Not one of the functions a pool read needs: the configuration is freed
    // when the library has it, and nothing is said when it has not.
    pool_conf_free_fn confFree = nullptr;
    if (conf && lib.find("pool_conf_free", confFree)) confFree(conf);
    return result;
}

int Zone::readChildZonesInfo()
{
    const char* fn = "readChildZonesInfo()";
    if (!m_insideZone || !isGlobalZone()) {
        ZONE_TRACE(traceMAX, fn, "%s",
                   "child zones info will not be read as this is not a zone or not a global zone");
        return 0;
    }
    const char* const list = sys::solaris::entry(sys::solaris::Id::Zoneadm).text;
    ZONE_TRACE(traceMAX, fn, "calling command: '%s'", list);
    ZPopen zoneadm(sys::solaris::argv(sys::solaris::Id::Zoneadm));
    if (zoneadm.run() != 0) return 1;
    ZONE_TRACE(traceMAX, fn, "'%s' command successfully executed", list);
    int result = 0;
    for (const std::string& line : zoneadm.lines()) {
        ZONE_TRACE(traceMAX, fn, "current line output: '%s'", line.c_str());
        ZoneInfo zone;
        std::string state;
        const char* what[] = {"id", "name", "state", "path"};
        std::string* fields[] = {&zone.id, &zone.name, &state, &zone.path};
        for (int f = 0; f < 4; ++f) {
            std::string field;
            if (Toolbox::strtok(f == 0 ? line.c_str() : nullptr, ':', field))
                *fields[f] = field;
            else
                ZONE_TRACE(traceMAX, fn, "could not match zone %s in '%s'", what[f], line.c_str());
        }
        // Neither the global zone nor this one is a child: nothing more is asked of them.
        if (zone.name == ZONE_NAMES_GLOBAL_ZONE || zone.name == m_info.name) continue;
        getZonePropertyValue(ZONECFG_INFO_PROPNAME_BRAND, zone.name, zone.type);
        setTypeDisplayed(zone);
        if (zone.typeDisplayed == ZONE_TYPE_KERNEL_ZONE) {
            std::string hex;
            getZonePropertyValue(ZONECFG_INFO_PROPNAME_HOSTID, zone.name, hex);
            const std::string decimal = utils::hexToDecimal(hex);
            if (decimal.empty())
                ZONE_TRACE(traceMIN, fn, "failed to convert hex hostid '%s' to decimal", hex.c_str());
            else
                zone.hostid = decimal;
        } else {
            zone.hostid = m_info.hostid;
        }
        getZonePropertyValue(ZONECFG_INFO_PROPNAME_POOL, zone.name, zone.sharedPoolName);
        if (!zone.sharedPoolName.empty()) {
            const int r = readPoolInfo(zone);
            if (r != 0) {
                ZONE_TRACE(traceMIN, fn, "failed to read pool info of the zones, error=%d", r);
                result = r;
            }
        }
        traceZone(fn, "a guest zone", zone);
        m_children.push_back(zone);
    }
    return result;
}

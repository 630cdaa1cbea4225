// Recording stand-ins for the functions of libv12n and libpool the zone
// reader calls: each calls the real one and keeps its answer in the
// capture's record of the libraries.
#include <cstring>

#include "common/replay/Recorder.h"
#include "common/sys/ZoneLibraries.h"

namespace replay {
namespace {

Recorder::LibraryAnswers* g_answers = nullptr;

// The real functions, found by the real dlsym.
v12n_get_current_env_fn real_v12n_get_current_env;
v12n_get_env_prop_fn real_v12n_get_env_prop;
pool_conf_alloc_fn real_pool_conf_alloc;
pool_conf_open_fn real_pool_conf_open;
pool_value_alloc_fn real_pool_value_alloc;
pool_get_pool_fn real_pool_get_pool;
pool_query_pool_resources_fn real_pool_query_pool_resources;
pool_resource_to_elem_fn real_pool_resource_to_elem;
pool_get_property_fn real_pool_get_property;
pool_value_get_string_fn real_pool_value_get_string;
pool_value_get_uint64_fn real_pool_value_get_uint64;

// A failed call: the reader stops at the first, so the replay fails them all.
template <typename T>
T failed(const char* function, T result)
{
    g_answers->poolFailing.insert(function);
    return result;
}

Recorder::PoolResource* resourceOf(const void* element)
{
    auto it = g_answers->resources.find(element);
    if (it == g_answers->resources.end()) return nullptr;
    return &g_answers->byPool[it->second.first][it->second.second];
}

extern "C" {

static v12n_env* rec_v12n_get_current_env()
{
    v12n_env* env = real_v12n_get_current_env();
    if (!env) g_answers->envFails = true;
    return env;
}

static char* rec_v12n_get_env_prop(v12n_env* env, int prop)
{
    char* value = real_v12n_get_env_prop(env, prop);
    if (prop == V12N_PROP_NAME) {
        if (value) g_answers->name = value; else g_answers->nameFails = true;
    } else if (prop == V12N_PROP_KZ_ZONENAME) {
        if (value) g_answers->kzZoneName = value; else g_answers->kzFails = true;
    }
    return value;
}

static pool_conf* rec_pool_conf_alloc()
{
    pool_conf* conf = real_pool_conf_alloc();
    return conf ? conf : failed<pool_conf*>("pool_conf_alloc", nullptr);
}

static int rec_pool_conf_open(pool_conf* conf, const char* location, int flags)
{
    const int result = real_pool_conf_open(conf, location, flags);
    return result == PO_SUCCESS ? result : failed("pool_conf_open", result);
}

static pool_value* rec_pool_value_alloc()
{
    pool_value* value = real_pool_value_alloc();
    return value ? value : failed<pool_value*>("pool_value_alloc", nullptr);
}

static pool* rec_pool_get_pool(const pool_conf* conf, const char* name)
{
    pool* p = real_pool_get_pool(conf, name);
    if (!p) return failed<pool*>("pool_get_pool", nullptr);
    g_answers->pools[p] = name ? name : "";
    g_answers->byPool[name ? name : ""];
    return p;
}

static pool_resource** rec_pool_query_pool_resources(const pool_conf* conf, const pool* p, unsigned int* count,
                                                     pool_value** properties)
{
    pool_resource** list = real_pool_query_pool_resources(conf, p, count, properties);
    if (!list) return failed<pool_resource**>("pool_query_pool_resources", nullptr);
    const std::string name = g_answers->pools[p];
    g_answers->byPool[name].resize(*count);
    for (unsigned int i = 0; i < *count; ++i) g_answers->resources[list[i]] = {name, i};
    return list;
}

static pool_elem* rec_pool_resource_to_elem(const pool_conf* conf, const pool_resource* resource)
{
    pool_elem* elem = real_pool_resource_to_elem(conf, resource);
    auto it = g_answers->resources.find(resource);
    if (elem && it != g_answers->resources.end()) g_answers->resources[elem] = it->second;
    return elem;
}

static pool_value_class rec_pool_get_property(const pool_conf* conf, const pool_elem* elem, const char* name,
                                              pool_value* value)
{
    const pool_value_class c = real_pool_get_property(conf, elem, name, value);
    if (c == POC_INVAL) return failed("pool_get_property", c);
    g_answers->values[value] = {elem, name ? name : ""};
    return c;
}

static int rec_pool_value_get_string(const pool_value* value, const char** out)
{
    const int result = real_pool_value_get_string(value, out);
    if (result != PO_SUCCESS || !*out) return failed("pool_value_get_string", result);
    const auto& asked = g_answers->values[value];
    if (Recorder::PoolResource* r = resourceOf(asked.first)) {
        if (asked.second == "type") r->type = *out;
        else if (asked.second.size() > 5 && asked.second.compare(asked.second.size() - 5, 5, ".name") == 0) r->name = *out;
    }
    return result;
}

static int rec_pool_value_get_uint64(const pool_value* value, uint64_t* out)
{
    const int result = real_pool_value_get_uint64(value, out);
    if (result != PO_SUCCESS) return failed("pool_value_get_uint64", result);
    if (Recorder::PoolResource* r = resourceOf(g_answers->values[value].first)) r->size = *out;
    return result;
}

}  // extern "C"

// The stand-in for `symbol`, its real function kept; null when there is none.
void* standIn(const char* symbol, void* real)
{
    struct Entry {
        const char* name;
        void* real;  // where the real function's address goes
        void (*standIn)();
    };
#define STAND_IN(name) {#name, &real_##name, reinterpret_cast<void (*)()>(rec_##name)}
    static const Entry table[] = {
        STAND_IN(v12n_get_current_env), STAND_IN(v12n_get_env_prop), STAND_IN(pool_conf_alloc),
        STAND_IN(pool_conf_open), STAND_IN(pool_value_alloc), STAND_IN(pool_get_pool),
        STAND_IN(pool_query_pool_resources), STAND_IN(pool_resource_to_elem), STAND_IN(pool_get_property),
        STAND_IN(pool_value_get_string), STAND_IN(pool_value_get_uint64),
    };
#undef STAND_IN
    for (const Entry& e : table) {
        if (std::strcmp(e.name, symbol) != 0) continue;
        std::memcpy(e.real, &real, sizeof real);
        void* address;
        std::memcpy(&address, &e.standIn, sizeof address);
        return address;
    }
    return nullptr;
}

}  // namespace

void* Recorder::dlsym(void* handle, const char* symbol)
{
    void* real = m_real.dlsym(handle, symbol);
    if (!symbol) return real;
    if (!real) {
        auto library = m_libraryAnswers.handles.find(handle);
        if (library != m_libraryAnswers.handles.end()) m_libraryAnswers.missing[library->second].insert(symbol);
        return real;
    }
    g_answers = &m_libraryAnswers;
    void* recorded = standIn(symbol, real);
    return recorded ? recorded : real;
}

}  // namespace replay

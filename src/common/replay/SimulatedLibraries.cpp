// The fake libv12n and libpool that SimulatedSystem's dlsym hands out: each
// function answers from the current SimulatedSystem's v12n and pools data. What
// they allocate is freed only by the calls the real libraries document, so a
// caller that forgets one shows up as a leak in a sanitizer build.
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string>

#include "common/replay/SimulatedSystem.h"
#include "common/sys/ZoneLibraries.h"

namespace replay {

namespace {

SimulatedSystem* g_owner = nullptr;

// The system that handed the function out: the current one is a recorder
// when a replay is captured again.
SimulatedSystem& fake() { return g_owner ? *g_owner : dynamic_cast<SimulatedSystem&>(sys::current()); }

int g_poolError = 0;

// A failing pool call: the library remembers why.
template <typename T>
T poolFails(T result)
{
    g_poolError = 5;  // POE_BADPARAM
    errno = EINVAL;
    return result;
}

struct FakeValue {
    bool isString = false;
    std::string text;
    unsigned long long number = 0;
};
struct FakeConf {
    int unused;
};

}  // namespace
}  // namespace replay

using namespace replay;

// Whatever the fake library hands out is a pointer to one of these.
struct v12n_env {
    int unused;
};

extern "C" {

static v12n_env* fake_v12n_get_current_env()
{
    errno = ENOTSUP;  // read only when it fails
    return fake().v12n.envFails ? nullptr : new v12n_env{0};
}

static char* fake_v12n_get_env_prop(v12n_env*, int prop)
{
    const SimulatedSystem::V12n& v = fake().v12n;
    const bool fails = prop == V12N_PROP_NAME ? v.nameFails : prop == V12N_PROP_KZ_ZONENAME ? v.kzFails : true;
    if (fails) {
        errno = ENOENT;
        return nullptr;
    }
    return strdup(prop == V12N_PROP_NAME ? v.name.c_str() : v.kzZoneName.c_str());
}

static void fake_v12n_free_env(v12n_env* env) { delete env; }

static int fake_pool_error() { return g_poolError; }
static const char* fake_pool_strerror(int) { return "fake pool error"; }

static pool_conf* fake_pool_conf_alloc()
{
    return fake().pools.fails("pool_conf_alloc") ? poolFails<pool_conf*>(nullptr)
                                                 : reinterpret_cast<pool_conf*>(new FakeConf{0});
}

static void fake_pool_conf_free(pool_conf* conf) { delete reinterpret_cast<FakeConf*>(conf); }

static int fake_pool_conf_open(pool_conf*, const char*, int)
{
    return fake().pools.fails("pool_conf_open") ? poolFails(PO_FAIL) : PO_SUCCESS;
}

static int fake_pool_conf_close(pool_conf*) { return PO_SUCCESS; }

static const char* fake_pool_dynamic_location() { return fake().pools.location.c_str(); }

static pool* fake_pool_get_pool(const pool_conf*, const char* name)
{
    auto& pools = fake().pools;
    auto it = pools.byName.find(name ? name : "");
    if (pools.fails("pool_get_pool") || it == pools.byName.end()) return poolFails<pool*>(nullptr);
    return reinterpret_cast<pool*>(&it->second);
}

static pool_resource** fake_pool_query_pool_resources(const pool_conf*, const pool* p, unsigned int* count,
                                                      pool_value**)
{
    auto* resources = reinterpret_cast<std::vector<SimulatedSystem::PoolResource>*>(const_cast<pool*>(p));
    if (fake().pools.fails("pool_query_pool_resources") || resources->empty())
        return poolFails<pool_resource**>(nullptr);
    // malloc'd, as the real one: the caller frees it.
    auto** list = static_cast<pool_resource**>(std::malloc(sizeof(pool_resource*) * resources->size()));
    for (size_t i = 0; i < resources->size(); ++i) list[i] = reinterpret_cast<pool_resource*>(&(*resources)[i]);
    *count = static_cast<unsigned int>(resources->size());
    return list;
}

static pool_elem* fake_pool_resource_to_elem(const pool_conf*, const pool_resource* resource)
{
    return reinterpret_cast<pool_elem*>(const_cast<pool_resource*>(resource));
}

static pool_value_class fake_pool_get_property(const pool_conf*, const pool_elem* elem, const char* name,
                                               pool_value* value)
{
    const auto* r = reinterpret_cast<const SimulatedSystem::PoolResource*>(elem);
    auto* v = reinterpret_cast<FakeValue*>(value);
    const std::string property = name ? name : "";
    if (fake().pools.fails("pool_get_property")) return poolFails(POC_INVAL);
    if (property == "type" || property == r->type + ".name") {
        *v = FakeValue{true, property == "type" ? r->type : r->name, 0};
        return 4;  // POC_STRING
    }
    if (property == r->type + ".size") {
        *v = FakeValue{false, std::string(), r->size};
        return 0;  // POC_UINT
    }
    return poolFails(POC_INVAL);
}

static pool_value* fake_pool_value_alloc()
{
    return fake().pools.fails("pool_value_alloc") ? poolFails<pool_value*>(nullptr)
                                                  : reinterpret_cast<pool_value*>(new FakeValue);
}

static void fake_pool_value_free(pool_value* value) { delete reinterpret_cast<FakeValue*>(value); }

static int fake_pool_value_get_string(const pool_value* value, const char** out)
{
    const auto* v = reinterpret_cast<const FakeValue*>(value);
    if (!v->isString) return poolFails(PO_FAIL);
    *out = v->text.c_str();
    return PO_SUCCESS;
}

static int fake_pool_value_get_uint64(const pool_value* value, uint64_t* out)
{
    const auto* v = reinterpret_cast<const FakeValue*>(value);
    if (v->isString) return poolFails(PO_FAIL);
    *out = v->number;
    return PO_SUCCESS;
}

}  // extern "C"

namespace replay {

void* fakeLibraryFunction(const char* symbol, SimulatedSystem* owner)
{
    g_owner = owner;
    struct Entry {
        const char* name;
        void (*function)();
    };
#define FAKE(name) {#name, reinterpret_cast<void (*)()>(fake_##name)}
    static const Entry table[] = {
        FAKE(v12n_get_current_env), FAKE(v12n_get_env_prop), FAKE(v12n_free_env), FAKE(pool_error),
        FAKE(pool_strerror), FAKE(pool_conf_alloc), FAKE(pool_conf_free), FAKE(pool_conf_open),
        FAKE(pool_conf_close), FAKE(pool_dynamic_location), FAKE(pool_get_pool), FAKE(pool_query_pool_resources),
        FAKE(pool_resource_to_elem), FAKE(pool_get_property), FAKE(pool_value_alloc), FAKE(pool_value_free),
        FAKE(pool_value_get_string), FAKE(pool_value_get_uint64),
    };
#undef FAKE
    for (const Entry& e : table) {
        if (std::strcmp(e.name, symbol) != 0) continue;
        void* address;
        std::memcpy(&address, &e.function, sizeof address);
        return address;
    }
    return nullptr;
}

}  // namespace replay

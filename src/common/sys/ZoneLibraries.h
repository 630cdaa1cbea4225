#pragma once
// The two Solaris libraries the zone reader opens at run time, as far as it
// calls them: the virtualization-environment library (libv12n.so.1) and the
// resource-pool library (libpool.so). Declared here, not taken from their
// headers: the scanner never links them, and Solaris 10 has no libv12n.
#include <cstdint>

extern "C" {

// libv12n: an opaque environment, its properties as text the caller frees.
struct v12n_env;
typedef v12n_env* (*v12n_get_current_env_fn)(void);
typedef char* (*v12n_get_env_prop_fn)(v12n_env* env, int prop);
typedef void (*v12n_free_env_fn)(v12n_env* env);
enum { V12N_PROP_NAME = 1, V12N_PROP_KZ_ZONENAME = 0x800 };

// libpool: opaque handles, values that own their strings.
struct pool_conf;
struct pool;
struct pool_resource;
struct pool_elem;
struct pool_value;
typedef int pool_value_class;  // POC_INVAL -1 ... POC_STRING 4
enum { POC_INVAL = -1, PO_RDONLY = 0, PO_SUCCESS = 0, PO_FAIL = -1 };

typedef int (*pool_error_fn)(void);
typedef const char* (*pool_strerror_fn)(int error);
typedef pool_conf* (*pool_conf_alloc_fn)(void);
typedef void (*pool_conf_free_fn)(pool_conf* conf);
typedef int (*pool_conf_open_fn)(pool_conf* conf, const char* location, int flags);
typedef const char* (*pool_dynamic_location_fn)(void);
typedef pool_value_class (*pool_get_property_fn)(const pool_conf* conf, const pool_elem* elem, const char* name,
                                                 pool_value* value);
typedef pool_value* (*pool_value_alloc_fn)(void);
typedef void (*pool_value_free_fn)(pool_value* value);
typedef int (*pool_conf_close_fn)(pool_conf* conf);
typedef int (*pool_value_get_string_fn)(const pool_value* value, const char** out);
typedef pool* (*pool_get_pool_fn)(const pool_conf* conf, const char* name);
typedef pool_resource** (*pool_query_pool_resources_fn)(const pool_conf* conf, const pool* p, unsigned int* count,
                                                         pool_value** properties);
typedef pool_elem* (*pool_resource_to_elem_fn)(const pool_conf* conf, const pool_resource* resource);
typedef int (*pool_value_get_uint64_fn)(const pool_value* value, uint64_t* out);
}

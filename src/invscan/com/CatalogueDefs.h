#pragma once
// Shorthands for writing the catalogue tables; included by the data files only.
#include "invscan/com/Catalogue.h"

#define KSTR(id, name, len) {id, name, KOR_STRING, len, nullptr}
#define KULONG(id, name) {id, name, KOR_ULONG, 0, nullptr}
#define KULONG_ENUM(id, name, e) {id, name, KOR_ULONG, 0, e}
#define KSTR_ENUM(id, name, len, e) {id, name, KOR_STRING, len, e}
#define KFLOAT(id, name) {id, name, KOR_FLOAT, 0, nullptr}
#define KTIME(id, name) {id, name, KOR_DATETIME, 0, nullptr}
#define KULL(id, name) {id, name, KOR_ULONGLONG, 0, nullptr}
#define KATTR_END {KOR_END, nullptr, 0, 0, nullptr}
#define KENUM_END {KOR_END, nullptr}

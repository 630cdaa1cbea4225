#pragma once
// What a comparison of two scans needs to know of the catalogue beyond its
// tables: the attributes that change on every scan, the attribute that
// identifies the one row of a group without keys, and the attributes that
// tell one machine from another, and where the rows leave the catalogue on
// purpose (the row builder and the command line read those). Not exported.
#include <cstdint>

struct korAttribRef {
    uint32_t groupId;
    uint32_t attribId;
};

// Changes on every scan (free memory, ticks, load, uptime, dates of the scan
// and of the boot, free space); ended by a record whose group id is KOR_END.
extern const korAttribRef VOLATILE_ATTRS_DEF[];
// A group's own identity attribute where it has no keys; ended likewise.
extern const korAttribRef IDENTITY_ATTRS_DEF[];
// Two scans whose values of these differ are of two machines.
extern const korAttribRef MACHINE_ATTRS_DEF[];
// Texts the groups keep whole although the catalogue gives them a shorter
// length: a host truncates them when it stores them.
extern const korAttribRef UNBOUNDED_ATTRS_DEF[];

struct korAttribTypeRef {
    uint32_t groupId;
    uint32_t attribId;
    uint32_t type;
};
// Numbers the groups carry in a wider type than the catalogue's.
extern const korAttribTypeRef WIDER_ATTRS_DEF[];

bool isVolatileAttrib(unsigned long groupId, unsigned long attribId);
// The identity attribute's id, or 0 when the group has none.
unsigned long getIdentityAttribId(unsigned long groupId);
bool isUnboundedAttrib(unsigned long groupId, unsigned long attribId);
// The type the attribute's values carry: its wider type, else `catalogued`.
uint32_t getCarriedType(unsigned long groupId, unsigned long attribId, uint32_t catalogued);

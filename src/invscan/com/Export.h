#pragma once
// The library is built with hidden names; what a host may link against says
// so with INVSCAN_API. A helper left unmarked cannot become a name some host
// comes to rely on.
#define INVSCAN_API __attribute__((visibility("default")))

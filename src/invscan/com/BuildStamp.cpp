#include <cstdio>

#include "BuildStampValues.h"  // generated when the build tree is configured
#include "common/util/ApiGuard.h"
#include "invscan/com/GroupFactory.h"

const char QVRB_BuildDate[] = QVRB_BUILD_DATE;
const char QVRB_BuildTime[] = QVRB_BUILD_TIME;

const char* getBuildDateQVRB()
{
    static char stamp[32];
    static bool made = false;
    std::lock_guard<std::recursive_mutex> hold(api::lock());  // the first call writes the buffer
    if (!made) {
        std::snprintf(stamp, sizeof stamp, "20%s-%s.000000", QVRB_BuildDate, QVRB_BuildTime);
        // yy/mm/dd and hh:mm:ss come with the wrong separators for the date-time form.
        stamp[4] = '-';
        stamp[7] = '-';
        stamp[13] = '.';
        stamp[16] = '.';
        made = true;
    }
    stamp[31] = '\0';
    return stamp;
}

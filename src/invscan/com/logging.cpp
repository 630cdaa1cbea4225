#include "invscan/com/logging.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>

extern "C" {

int debug_on = 0;

char* getLocalDatetime()
{
    char buffer[80];
    size_t n = 0;
    const time_t now = time(nullptr);
    struct tm local;
    if (localtime_r(&now, &local)) n = strftime(buffer, sizeof buffer, "%Y-%m-%dT%H:%M:%S", &local);
    buffer[n] = '\0';
    return strdup(buffer);
}

void logprefix(const char* file, int line)
{
    char* when = getLocalDatetime();
    if (when && *when)
        fprintf(stderr, "%s %s(%d) - ", when, file, line);
    else
        fprintf(stderr, "%s(%d) - ", file, line);
    free(when);
}

void logprintf(const char* format, ...)
{
    va_list args;
    va_start(args, format);
    vfprintf(stderr, format, args);
    va_end(args);
}

}  // extern "C"

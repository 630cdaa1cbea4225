#include "framework/Trace.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <sys/time.h>

#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <mutex>

#include "common/sys/Portable.h"
#include "framework/NimCfg.h"
#include "framework/utils.h"

namespace trace {
namespace detail {
Level g_level = Level::Off;
}

namespace {
struct Sink {
    std::mutex lock;
    FILE* file = nullptr;  // null: standard error
    Capture* capture = nullptr;
};

Sink& sink()
{
    static Sink s;
    return s;
}

std::string timestamp()
{
    struct timeval now;
    gettimeofday(&now, nullptr);
    const time_t seconds = now.tv_sec;
    struct tm local;
    localtime_r(&seconds, &local);
    char buffer[40];
    const size_t n = strftime(buffer, sizeof buffer, "%Y-%m-%dT%H:%M:%S", &local);
    snprintf(buffer + n, sizeof buffer - n, ".%03ld", static_cast<long>(now.tv_usec / 1000));
    return buffer;
}

}  // namespace

namespace detail {
NIMFW_PRINTF(1, 0) std::string vformat(const char* format, va_list args);
std::string vformat(const char* format, va_list args)
{
    if (!format) return std::string();
    va_list copy;
    va_copy(copy, args);
    char small[512];
    const int needed = vsnprintf(small, sizeof small, format, copy);
    va_end(copy);
    if (needed < 0) return std::string();
    if (static_cast<size_t>(needed) < sizeof small) return std::string(small, static_cast<size_t>(needed));
    std::string out(static_cast<size_t>(needed) + 1, '\0');
    vsnprintf(&out[0], out.size(), format, args);
    out.resize(static_cast<size_t>(needed));
    return out;
}
}  // namespace detail

const char* levelName(Level level)
{
    switch (level) {
    case Level::Min: return "MIN";
    case Level::Mid: return "MID";
    case Level::Max: return "MAX";
    case Level::Off: break;
    }
    return "OFF";
}

bool parseLevel(const std::string& text, Level& out)
{
    const std::string t = utils::toLower(utils::trimBoth(text));
    if (t == "off" || t == "0") out = Level::Off;
    else if (t == "min" || t == "1") out = Level::Min;
    else if (t == "mid" || t == "2") out = Level::Mid;
    else if (t == "max" || t == "3") out = Level::Max;
    else return false;
    return true;
}

void setLevel(Level level) { detail::g_level = level; }
Level level() { return detail::g_level; }

bool setFile(const std::string& path)
{
    Sink& s = sink();
    std::lock_guard<std::mutex> guard(s.lock);
    FILE* next = nullptr;
    if (!path.empty() && path != "stderr") {
        // Appended to, never through a link, never into a FIFO or device: the
        // folder may be shared and the host may run as root.
        const int fd = sys::openCloexec(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_NOFOLLOW | O_NONBLOCK, 0644);
        struct stat st;
        if (fd >= 0 && fstat(fd, &st) == 0 && S_ISREG(st.st_mode)) next = fdopen(fd, "a");
        if (!next) {
            if (fd >= 0) close(fd);
            return false;
        }
    }
    if (s.file) fclose(s.file);
    s.file = next;
    return true;
}

bool configure()
{
    Level wanted = Level::Off;
    const std::string levelText = NimCfg::getKey("trace.level").narrow();
    if (!levelText.empty() && !parseLevel(levelText, wanted))
        fprintf(stderr, "invscan: ignoring trace.level=%s (expected off, min, mid or max)\n", levelText.c_str());
    // The file is opened only when there is something to write to it.
    const std::string file = wanted == Level::Off ? std::string() : NimCfg::getKey("trace.file").narrow();
    const bool opened = setFile(file);
    if (!opened) {
        fprintf(stderr, "invscan: cannot open trace file %s; tracing to standard error\n", file.c_str());
        setFile(std::string());
    }
    setLevel(wanted);
    return opened;
}

void emit(Level level, const char* file, int line, const char* function, std::string&& text)
{
    Record record{level, file ? file : "", line, function ? function : "", std::move(text), std::string()};
    record.formatted = timestamp() + " " + levelName(level) + " " + record.file + "(" + std::to_string(line) +
                       ") " + record.function + ": " + record.text;
    Sink& s = sink();
    std::lock_guard<std::mutex> guard(s.lock);
    if (s.capture) {
        s.capture->m_records.push_back(std::move(record));
        return;
    }
    FILE* out = s.file ? s.file : stderr;
    fprintf(out, "%s\n", record.formatted.c_str());
    fflush(out);
}

Capture::Capture(Level wanted) : m_previousLevel(detail::g_level)
{
    Sink& s = sink();
    std::lock_guard<std::mutex> guard(s.lock);
    m_previous = s.capture;
    s.capture = this;
    detail::g_level = wanted;
}

Capture::~Capture()
{
    Sink& s = sink();
    std::lock_guard<std::mutex> guard(s.lock);
    s.capture = m_previous;
    detail::g_level = m_previousLevel;
}

std::vector<std::string> Capture::texts() const
{
    std::vector<std::string> out;
    out.reserve(m_records.size());
    for (const Record& r : m_records) out.push_back(r.text);
    return out;
}

bool Capture::contains(const std::string& needle) const
{
    for (const Record& r : m_records)
        if (r.text.find(needle) != std::string::npos) return true;
    return false;
}

}  // namespace trace

int getCcLogHw()
{
    return Tracer::HARDWARE;
}

#define NIMFW_TRACE_BODY(level)                                                      \
    do {                                                                             \
        if (!trace::enabled(level)) return;                                          \
        va_list args;                                                                \
        va_start(args, format);                                                      \
        std::string text = trace::detail::vformat(format, args);                             \
        va_end(args);                                                                \
        trace::emit(level, file, line, function, std::move(text));                   \
    } while (0)

void CcLogWrapper::traceMidEntry(int, int line, const char* file, const char* function, const char* format, ...)
{
    NIMFW_TRACE_BODY(trace::Level::Mid);
}

void CcLogWrapper::traceMidExit(int, int line, const char* file, const char* function, const char* format, ...)
{
    NIMFW_TRACE_BODY(trace::Level::Mid);
}

void CcLogWrapper::traceMIN(int, int line, const char* file, const char* function, const char* format, ...)
{
    NIMFW_TRACE_BODY(trace::Level::Min);
}

void CcLogWrapper::traceMID(int, int line, const char* file, const char* function, const char* format, ...)
{
    NIMFW_TRACE_BODY(trace::Level::Mid);
}

void CcLogWrapper::traceMAX(int, int line, const char* file, const char* function, const char* format, ...)
{
    NIMFW_TRACE_BODY(trace::Level::Max);
}

Tracer& Tracer::getInstance(Component component)
{
    static Tracer hardware(HARDWARE), config(CONFIG), framework(FRAMEWORK);
    switch (component) {
    case CONFIG: return config;
    case FRAMEWORK: return framework;
    case HARDWARE: break;
    }
    return hardware;
}

const char* Tracer::name() const
{
    switch (m_component) {
    case CONFIG: return "config";
    case FRAMEWORK: return "framework";
    case HARDWARE: break;
    }
    return "hardware";
}

Trace::Trace(Tracer& tracer, const char* function, trace::Level level)
    : m_tracer(tracer), m_function(function ? function : ""), m_level(level), m_active(trace::enabled(level))
{
}

Trace::~Trace()
{
    if (m_active) trace::emit(m_level, m_tracer.name(), 0, m_function, std::move(m_text));
}

Trace& Trace::operator<<(const char* text)
{
    if (m_active && text) m_text += text;
    return *this;
}

Trace& Trace::operator<<(const std::string& text)
{
    if (m_active) m_text += text;
    return *this;
}

Trace& Trace::operator<<(const wchar_t* text)
{
    if (m_active && text) m_text += utils::stringToUTF8(std::wstring(text));
    return *this;
}

Trace& Trace::operator<<(const std::wstring& text)
{
    if (m_active) m_text += utils::stringToUTF8(text);
    return *this;
}

Trace& Trace::operator<<(const String& text)
{
    if (m_active) m_text += text.narrow();
    return *this;
}

namespace {
template <typename T>
void appendNumber(std::string& out, T value, bool hex)
{
    if (!hex) {
        out += std::to_string(value);
        return;
    }
    char buffer[32];
    snprintf(buffer, sizeof buffer, "0x%llx", static_cast<unsigned long long>(value));
    out += buffer;
}
}  // namespace

Trace& Trace::operator<<(int value)
{
    if (m_active) appendNumber(m_text, value, m_hex);
    return *this;
}

Trace& Trace::operator<<(long value)
{
    if (m_active) appendNumber(m_text, value, m_hex);
    return *this;
}

Trace& Trace::operator<<(unsigned long value)
{
    if (m_active) appendNumber(m_text, value, m_hex);
    return *this;
}

Trace& Trace::operator<<(unsigned value)
{
    if (m_active) appendNumber(m_text, value, m_hex);
    return *this;
}

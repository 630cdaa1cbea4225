#include "framework/ZPopen.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "common/sys/System.h"
#include "framework/NimCfg.h"
#include "framework/RunLog.h"
#include "framework/Trace.h"
#include "framework/utils.h"

namespace {
const char* const kSource = "./../../../src/framework/ZPopen";
}

ZPopen::ZPopen(const String& program, const std::vector<String>& args)
{
    m_argv.push_back(program.narrow());
    for (const String& a : args) m_argv.push_back(a.narrow());
}

ZPopen::ZPopen(const std::vector<std::string>& argv) : m_argv(argv) {}

int ZPopen::run()
{
    if (m_argv.empty()) {
        CcLogWrapper::traceMIN(getCcLogHw(), __LINE__, kSource, "run()", "[E] %s", "no command to run");
        errno = EINVAL;
        return m_status = -1;
    }
    const int timeout = NimCfg::getTimeout();
    CcLogWrapper::traceMidEntry(getCcLogHw(), __LINE__, kSource, "run()", "hardware %s (time-out %d s)",
                                m_argv[0].c_str(), timeout);
    std::string line = m_argv[0];
    for (size_t i = 1; i < m_argv.size(); ++i) line += " " + m_argv[i];
    runlog::Timed timed(line);
    errno = 0;
    m_status = sys::current().runCommand(m_argv, timeout, m_lines);
    timed.setStatus(m_status);
    m_timedOut = m_status == -1 && errno == ETIMEDOUT;
    if (m_timedOut)
        CcLogWrapper::traceMIN(getCcLogHw(), __LINE__, kSource, "run()", "[E] %s timed out after %d s",
                               m_argv[0].c_str(), timeout);
    else if (m_status == -1)
        CcLogWrapper::traceMIN(getCcLogHw(), __LINE__, kSource, "run()", "[E] %s could not run: %s",
                               m_argv[0].c_str(), std::strerror(errno));
    CcLogWrapper::traceMidExit(getCcLogHw(), __LINE__, kSource, "run()", "hardware %s status %d lines %zu",
                               m_argv[0].c_str(), m_status, m_lines.size());
    return m_status;
}

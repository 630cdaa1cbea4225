#pragma once
// Facts several groups read within one scan, gathered by the first group
// that asks and shared by the rest: each command behind them runs once a
// scan. They are dropped when the host ends the scan, or a minute after they
// were gathered for hosts that never say so, and gathered afresh for
// another system (a replay, a test's simulated machine).
#include <memory>
#include <mutex>

#include "common/sys/System.h"

template <class Facts>
class ScanScoped {
public:
    static constexpr long long REUSE_SECONDS = 60;

    template <class Gather>
    std::shared_ptr<const Facts> get(sys::System& os, Gather gather)
    {
        std::lock_guard<std::mutex> hold(m_lock);
        const long long now = static_cast<long long>(os.time());
        if (m_facts && m_from == &os && now >= m_takenAt && now - m_takenAt < REUSE_SECONDS) return m_facts;
        m_facts.reset();  // a stale copy goes before a new one is gathered
        m_facts = gather();
        m_from = &os;
        m_takenAt = now;
        return m_facts;
    }

    void forget()
    {
        std::lock_guard<std::mutex> hold(m_lock);
        m_facts.reset();
    }

private:
    std::mutex m_lock;
    std::shared_ptr<const Facts> m_facts;
    const sys::System* m_from = nullptr;
    long long m_takenAt = 0;
};

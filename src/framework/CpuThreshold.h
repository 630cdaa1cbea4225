#pragma once
// The scan's CPU throttle. Between groups the scanner calls doIteration();
// when the process's CPU use since the previous step (its own threads and the
// probe children it has waited for) was above the configured percentage of
// one processor, the step sleeps just long enough to bring that step's
// average back to the percentage. 0 (or anything outside 1-99) switches the
// throttle off.
class CpuThreshold {
public:
    // No single step sleeps longer than this, whatever the arithmetic says.
    static const int MAX_SLEEP_MS = 30000;

    // Sets the percentage and starts a fresh measuring window. A positive
    // priority lowers the process's scheduling priority by that many steps
    // (nice); it is applied once and never raised back.
    static void Initialize(int cpuThreshold, int priority = 0);
    static void doIteration();

    static int getThreshold();
    static bool isEnabled();
    // What the last step measured and did, for diagnosis.
    static double lastCpuSeconds();
    static double lastWallSeconds();
    static double lastSleepSeconds();
    // Sum of every step's sleep since Initialize.
    static double totalSleepSeconds();

    // The sleep a step takes after `cpuSeconds` of CPU over `wallSeconds`
    // at `threshold` percent: what brings the step's average down to the
    // percentage, capped at MAX_SLEEP_MS; 0 when off, under the percentage,
    // or under a millisecond.
    static double sleepFor(int threshold, double cpuSeconds, double wallSeconds);

    // Where a step reads the time and how it sleeps. Tests put a clock of
    // their own here, so that what they check does not depend on how a busy
    // machine schedules them; null restores the real one.
    struct Clock {
        double (*wallSeconds)();  // any fixed origin
        double (*cpuSeconds)();   // this process and its waited-for children
        void (*sleep)(double seconds);
    };
    static void setClock(const Clock* clock);
};

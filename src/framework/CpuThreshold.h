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
};

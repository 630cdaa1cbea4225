#pragma once
// "Keyboard": the console keyboard as "kbd -t -l" tells it, completed from
// the keyboard defaults file; no table on a machine without a keyboard.
#include <map>
#include <string>
#include <vector>

#include "invscan/com/Export.h"
#include "invscan/com/KorGroup.h"

namespace sys {
class System;
}
class KorTable;

class INVSCAN_API KeyboardGroup : public KorGroup {
public:
    KeyboardGroup();
    KorTable* getTable() override;
};

struct KeyboardFacts {
    std::string type;     // "USB keyboard"
    std::string subType;  // the keyboard type number, "6"
    std::string layout;   // a layout name, or its number until one is found
    int delayMs = -1, rateMs = -1;
};

// "kbd -t -l" lines: the type's name, then type=, layout=N (0xNN),
// delay(ms)= and rate(ms)= lines. False when nothing was recognised.
bool parseKbdOutput(const std::vector<std::string>& lines, KeyboardFacts& facts);
// /etc/default/kbd's LAYOUT, REPEAT_DELAY and REPEAT_RATE fill what kbd did not say.
void applyKeyboardDefaults(const std::map<std::string, std::string>& defaults, KeyboardFacts& facts);
// A layout number's name from the layouts file ("US-English=33" lines); the
// number itself when the file does not know it.
std::string layoutName(sys::System& os, const std::string& layout);

void shapeKeyboardRow(const KeyboardFacts& facts, KorTable& table);

// The smallest host of the scanner library: what an inventory framework does
// with it. Scans the groups named on the command line (every group when none
// is) and prints each row's attributes, named by the catalogue and rendered
// by the library. Exit 0 when some group gave a table.
#include <cstdio>
#include <cstdlib>
#include <list>

#include "framework/NimCfg.h"
#include "framework/String.h"
#include "invscan/com/GroupFactory.h"
#include "invscan/com/Render.h"

int main(int argc, char** argv)
{
    // The library runs its probes from $NIM_HOMEDIR/bin; the installed
    // scanner's home also holds the hardware configuration file.
    setenv("NIM_HOMEDIR", INVSCAN_HOME, 0);
    NimCfg::setKey("config_dir", String(std::getenv("NIM_HOMEDIR")) + String("/config"));

    GroupFactory* factory = GroupFactory::getInstance();
    factory->initialise();
    factory->loadNodeFromFile(factory->getHWConfigFile(), 0);
    factory->startScan();

    std::list<String> names;
    for (int i = 1; i < argc; ++i) names.push_back(String(argv[i]));
    if (names.empty()) factory->getAllGroups(names);

    int tables = 0;
    for (const String& name : names) {
        KorGroup* group = factory->getGroup(name);
        if (!group) {
            std::fprintf(stderr, "host: no group %s\n", name.narrow().c_str());
            continue;
        }
        if (KorTable* table = group->getTable()) {
            ++tables;
            std::printf("%s: %lu rows\n", table->getGroupName(), table->getRowCount());
            table->reset();
            while (KorTableRow* row = table->getNext()) {
                row->reset();
                for (unsigned long i = 0; i < row->getNumAttribs(); ++i) {
                    const KorTableAttrib* attrib = row->getNext();
                    if (!attrib) continue;
                    std::printf("  %s = ", getAttribNameFromId(table->getGroupDefinitionFromId(), attrib->getId()));
                    PrintKorAttribValueToFile(stdout, attrib->getAttribPtr());
                    std::printf("\n");
                }
            }
            delete table;
        }
        delete group;
    }
    factory->endScan();
    return tables > 0 ? 0 : 1;
}

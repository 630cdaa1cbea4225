#include "support/HostScan.h"

#include <list>
#include <memory>

#include "invscan/com/GroupFactory.h"
#include "invscan/com/KorGroup.h"
#include "invscan/com/KorTable.h"

namespace testsupport {

void hostScan(const std::function<void(const std::string& name, KorTable* table)>& each)
{
    GroupFactory* factory = GroupFactory::getInstance();
    factory->initialise();
    factory->loadNodeFromFile(factory->getHWConfigFile(), 0);
    factory->startScan();
    std::list<String> names;
    factory->getAllGroups(names);
    for (const String& name : names) {
        std::unique_ptr<KorGroup> group(factory->getGroup(name));
        std::unique_ptr<KorTable> table(group ? group->getTable() : nullptr);
        each(name.narrow(), table.get());
    }
    factory->endScan();
}

}  // namespace testsupport

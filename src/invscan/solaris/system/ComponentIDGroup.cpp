#include "invscan/solaris/system/ComponentIDGroup.h"

#include <fcntl.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "common/sys/Portable.h"
#include "common/sys/SolarisCommands.h"
#include "common/sys/System.h"
#include "common/util/smbios.h"
#include "framework/Trace.h"
#include "invscan/com/CatalogueIds.h"
#include "invscan/com/GroupRegistry.h"
#include "invscan/com/KorTable.h"
#include "invscan/com/RowBuilder.h"
#include "invscan/solaris/processor/ProcessorGroup.h"
#include "common/util/ApiGuard.h"

namespace {

const char* const kSource = "./../../../src/invscan/solaris/ComponentIDGroup";
#define CID_TRACE(level, fn, ...) CcLogWrapper::level(getCcLogHw(), __LINE__, kSource, fn, __VA_ARGS__)

const int kBufferSize = 1024;
// No PROM node has this many properties: a driver that never says "no more" is not waited for.
const int kMaxProperties = 4096;

// sysinfo into a buffer of `size` bytes; "" when it fails.
std::string sysinfoText(int command, long size = kBufferSize)
{
    std::string buffer(static_cast<size_t>(size), '\0');
    if (sys::current().sysinfo(command, &buffer[0], size) < 0) return std::string();
    return buffer.c_str();
}

// Takes a heap string from the SMBIOS reader; null stays null.
std::string take(char* text)
{
    std::string out = text ? text : "";
    std::free(text);
    return out;
}

}  // namespace

std::string typeFromPlatform(const std::string& platform)
{
    // "SUNW,Sun-Fire-V240": the vendor's prefix before the comma, the model
    // after it; the model is what tells machines apart.
    const size_t comma = platform.find(',');
    if (comma == std::string::npos || comma >= 32) return std::string();
    return platform.substr(comma + 1, 32);
}

char* ComponentIDGroup::getBanner()
{
    const char* fn = "getBanner()";
    sys::System& os = sys::current();
    const char* const device = sys::solaris::path(sys::solaris::Id::PromDevice);
    const int fd = os.open(device, O_RDONLY);
    if (fd < 0) {
        CID_TRACE(traceMID, fn, "hardware %s %s %s %s", "open of device", device, "failed :",
                  std::strerror(errno));
        CID_TRACE(traceMID, fn, "hardware %s", "Return NULL");
        return nullptr;
    }
    char* banner = nullptr;
    openpromio* p = opp_zalloc(kBufferSize);
    if (p && peer(0, fd) != -1) {  // the root node becomes the current one
        for (int i = 0; i < kMaxProperties; ++i) {
            p->oprom_size = kBufferSize;  // capacity in, the name's length out
            if (os.ioctl(fd, OPROMNXTPROP, p) < 0) {
                CID_TRACE(traceMIN, fn, "hardware %s %s", "ioctl OPROMNXTPROP failed :", std::strerror(errno));
                break;
            }
            CID_TRACE(traceMAX, fn, "hardware %s %s", "openprom node :", p->oprom_array);
            CID_TRACE(traceMAX, fn, "hardware %s %u", "openprom size :", p->oprom_size);
            if (p->oprom_size == 0 || p->oprom_array[0] == '\0') {
                CID_TRACE(traceMAX, fn, "hardware %s", "No more openprom nodes!!!");
                break;
            }
            if (std::strcmp(p->oprom_array, "banner-name") != 0) continue;
            CID_TRACE(traceMAX, fn, "hardware %s", "Found banner-name");
            p->oprom_size = kBufferSize;
            if (os.ioctl(fd, OPROMGETPROP, p) < 0) {
                CID_TRACE(traceMIN, fn, "hardware %s %s", "ioctl OPROMGETPROP failed :", std::strerror(errno));
                break;
            }
            const unsigned length = p->oprom_size < kBufferSize ? p->oprom_size : kBufferSize - 1;
            banner = sys::boundedCopy(p->oprom_array, length);
            CID_TRACE(traceMAX, fn, "hardware %s %s", "openprom property :", banner ? banner : "");
            break;
        }
    }
    opp_free(p);
    os.close(fd);
    if (!banner) CID_TRACE(traceMID, fn, "hardware %s", "Return NULL");
    return banner;
}

void shapeComponentIdRow(const ComponentIdentity& id, KorTable& table)
{
    RowBuilder row(COMPONENT_ID_GROUP);
    row.text(CID_MANUFACTURER, id.manufacturer);
    row.text(CID_PRODUCT, id.product);
    row.text(CID_SERIAL_NUMBER, id.serial);
    row.text(CID_TYPE, id.type);
    row.text(CID_HW_SERIAL, id.hwSerial);
    row.text(CID_PLATFORM, id.platform);
    row.addTo(table);
}

ComponentIDGroup::ComponentIDGroup() : KorGroup(COMPONENT_ID_GROUP, 1) {}

KorTable* ComponentIDGroup::getTable()
{
    return api::guardedTable("ComponentIDGroup::getTable()", [&]() -> KorTable* {
        const char* fn = "getTable()";
        CcLogWrapper::traceMidEntry(getCcLogHw(), __LINE__, kSource, fn, "hardware %s", "ComponentIDGroup");
        ComponentIdentity id;
        char *manufacturer = nullptr, *product = nullptr, *type = nullptr, *version = nullptr, *serial = nullptr;
        if (SMBIOS_GetSystemInfo(&manufacturer, &product, &type, &version, &serial) == -1) {
            CID_TRACE(traceMAX, fn, "hardware %s", "Unable to READ the SMBIOS INFO");
        } else {
            CID_TRACE(traceMAX, fn, "hardware Manufacter=<%s>", manufacturer);  // spelled so, as hosts grep it
            CID_TRACE(traceMAX, fn, "hardware Product=<%s>", product);
            CID_TRACE(traceMAX, fn, "hardware Version=<%s>", version);
            CID_TRACE(traceMAX, fn, "hardware SerialNumber=<%s>", serial);
            CID_TRACE(traceMAX, fn, "hardware Type=<%s>", type);
        }
        id.manufacturer = take(manufacturer);
        id.product = take(product);
        id.type = take(type);
        id.serial = take(serial);
        take(version);
        if (id.serial.empty()) {
            CID_TRACE(traceMAX, fn, "hardware %s", "get serial number using sysinfo...");
            id.serial = sysinfoText(SI_HW_SERIAL);
        }
        if (id.manufacturer.empty()) id.manufacturer = sysinfoText(SI_HW_PROVIDER);
        if (id.product.empty()) {
            id.product = take(getBanner());
            if (id.product.empty()) id.product = sysinfoText(SI_PLATFORM);
        }
        if (id.type.empty()) {
            id.type = typeFromPlatform(sysinfoText(SI_PLATFORM, 64));
            CID_TRACE(traceMAX, fn, "hardware Type retrieved=%s", id.type.c_str());
        }
        id.platform = sysinfoText(SI_PLATFORM);
        CID_TRACE(traceMAX, fn, "hardware si_platform=%s", id.platform.c_str());
        id.hwSerial = sysinfoText(SI_HW_SERIAL);
        CID_TRACE(traceMAX, fn, "hardware si_hwserial=%s", id.hwSerial.c_str());

        auto* table = new KorTable(getGroupId(), getGroupVersion());
        shapeComponentIdRow(id, *table);
        CcLogWrapper::traceMidExit(getCcLogHw(), __LINE__, kSource, fn, "hardware %s", "ComponentIDGroup");
        return table;
    });
}

INVSCAN_REGISTER_GROUP(COMPONENT_ID_GROUP, ComponentIDGroup);

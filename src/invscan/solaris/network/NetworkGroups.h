#pragma once
// "Network Adapter" (a row a data link), "IP Address" and "IPv6 Address" (a
// row a configured address, loopback and other zones' addresses left out),
// shaped from the network facts of the scan.
#include <string>

#include "invscan/com/Export.h"
#include "invscan/com/KorGroup.h"

class KorTable;
struct PciNames;
namespace network {
struct NetworkFacts;
}

class INVSCAN_API NetworkAdapterGroup : public KorGroup {
public:
    NetworkAdapterGroup();
    KorTable* getTable() override;
};

class INVSCAN_API IpAddressGroup : public KorGroup {
public:
    IpAddressGroup();
    KorTable* getTable() override;
};

class INVSCAN_API Ipv6AddressGroup : public KorGroup {
public:
    Ipv6AddressGroup();
    KorTable* getTable() override;
};

// The rows of each table; none when the facts hold nothing to show.
void shapeAdapterRows(const network::NetworkFacts& facts, const PciNames& names, KorTable& table);
void shapeIpv4Rows(const network::NetworkFacts& facts, KorTable& table);
void shapeIpv6Rows(const network::NetworkFacts& facts, KorTable& table);

// "Link-Local", "Site-Local", "Unique Local" or "Global".
std::string ipv6Scope(const std::string& address);

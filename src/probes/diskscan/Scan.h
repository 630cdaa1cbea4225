#pragma once
// What the diskscan probe found, and the tree it prints of it.
#include <cstdio>
#include <string>
#include <vector>

#include "common/vartree/vtree.h"
#include "probes/diskscan/Parsers.h"

namespace diskscan {

struct DiskFact {
    std::string id;  // the raw device path the Storage group reports for the disk
    bool san = false;
    std::string wwnn, wwpn;  // the target port's names, for a SAN disk
    bool viaHba = false;
    std::string hbaId, hbaWwnn, hbaWwpn;
};

struct PartitionFact {
    std::string name, mount, type;   // the mount point, what is mounted there, its file system
    std::vector<std::string> disks;  // the Ids of the disks that hold it
};

struct Scan {
    std::vector<DiskFact> disks;
    std::vector<PartitionFact> partitions;
    std::vector<HbaPort> hbas;
};

// A root named "" holding "ScsiInfo" with "DiskTable", "PartitionTable" and
// "HbaTable". The caller deletes it.
VtNode* buildTree(const Scan& scan);
// The root's children in node-dump form on standard output.
void printTree(const VtNode* root);

// Fills `scan` from this machine. False, with a reason, when nothing could
// be read. What was read goes to `debug` when it is not null. Implemented
// once per platform (platform_*.cpp).
bool gatherScan(Scan& scan, std::string& error, FILE* debug);

}  // namespace diskscan

#include "probes/diskscan/Scan.h"

namespace diskscan {

VtNode* buildTree(const Scan& scan)
{
    VtNode* root = vtNewNode("");
    VtNode* info = vtNewNode("ScsiInfo");
    root->addChild(info);
    VtNode* disks = vtNewNode("DiskTable");
    info->addChild(disks);
    for (const DiskFact& d : scan.disks) {
        VtNode* disk = vtNewNode("Disk");
        disks->addChild(disk);
        vtAddString(disk, "Id", d.id);
        vtAddInt(disk, "isSAN", d.san ? 1 : 0);
        vtAddString(disk, "WWNN", d.wwnn);
        vtAddString(disk, "WWPN", d.wwpn);
        if (!d.viaHba) continue;
        VtNode* hba = vtNewNode("HBA");
        disk->addChild(hba);
        vtAddString(hba, "Id", d.hbaId);
        vtAddString(hba, "WWNN", d.hbaWwnn);
        vtAddString(hba, "WWPN", d.hbaWwpn);
    }
    VtNode* partitions = vtNewNode("PartitionTable");
    info->addChild(partitions);
    for (const PartitionFact& p : scan.partitions) {
        VtNode* partition = vtNewNode("Partition");
        partitions->addChild(partition);
        vtAddString(partition, "Name", p.name);
        vtAddString(partition, "Mount", p.mount);
        vtAddString(partition, "Type", p.type);
        for (const std::string& id : p.disks) {
            VtNode* disk = vtNewNode("Disk");
            partition->addChild(disk);
            vtAddString(disk, "Id", id);
        }
    }
    VtNode* hbas = vtNewNode("HbaTable");
    info->addChild(hbas);
    for (const HbaPort& h : scan.hbas) {
        VtNode* hba = vtNewNode("HBA");
        hbas->addChild(hba);
        const std::pair<const char*, const std::string*> values[] = {
            {"Id", &h.id},       {"Description", &h.description}, {"Vendor", &h.vendor}, {"Model", &h.model},
            {"Type", &h.type},   {"Serial", &h.serial},           {"Speed", &h.speed},   {"State", &h.state},
            {"WWNN", &h.wwnn},   {"WWPN", &h.wwpn}};
        for (const auto& v : values) vtAddString(hba, v.first, *v.second);
    }
    return root;
}

void printTree(const VtNode* root)
{
    for (const VtNode* child = root ? root->children : nullptr; child; child = child->next) vtDumpNode(child, 0);
}

}  // namespace diskscan

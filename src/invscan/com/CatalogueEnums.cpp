// Enumeration tables of the catalogue.
#include "invscan/com/CatalogueDefs.h"

const korEnumDef REGIONAL_TZ_PLUS_MINUS[] = {{1, "+"}, {2, "-"}, KENUM_END};
const korEnumDef REGIONAL_TZ_DAYLIGHT[] = {{1, "T"}, {2, "F"}, KENUM_END};
const korEnumDef STORAGE_SECURITY_ENABLED_ENUM_DEF[] = {
    {0, "Yes"}, {1, "No"}, {2, "Unsupported"}, {3, "Unknown"}, KENUM_END};
const korEnumDef PART_TYPE_ENUM_DEF[] = {
    {0, "Unknown"}, {1, "Logical Drive"}, {2, "Remote Drive"}, {3, "Logical Volume"}, KENUM_END};
const korEnumDef PART_MEDIA_TYPE_ENUM_DEF[] = {
    {0, "Unknown"}, {1, "No Root Directory"}, {2, "Removable Disk"}, {3, "Local Disk"},
    {4, "Remote Drive"}, {5, "CD-ROM"}, {6, "RAM Disk"}, KENUM_END};

const korEnumDef PROCESSOR_INTERFACE_ENUM_DEF[] = {
    {0, ""}, {1, "Other"}, {2, "Unknown"}, {3, "Daughterboard"}, {4, "ZIF Socket"},
    {5, "Replaceable Piggyback"}, {6, "None"}, {7, "LIF Socket"}, {8, "Slot 1"}, {9, "Slot 2"},
    {10, "370-pin socket"}, {11, "Slot A"}, {12, "Slot M"}, {13, "Socket 423"},
    {14, "Socket A (Socket 462)"}, {15, "Socket 478"}, {16, "Socket 754"}, {17, "Socket 940"}, KENUM_END};

const korEnumDef ADAPTER_TYPE_ENUM_DEF[] = {
    {1, "Unknown"}, {2, "Other"}, {3, "Ethernet Adapter"}, {4, "Token Ring Adapter"},
    {5, "Fibre Channel Adapter"}, {6, "Serial Line IP"}, {7, "Enterprise Systems Connection"},
    {8, "Channel to channel interface"}, {9, "IUCV"}, {10, "PPP Adapter"}, {11, "CSMA CD Adapter"},
    {12, "Token Passing Bus Adapter"}, {13, "Metro Net Adapter"}, {14, "ISO HDLC Adapter"},
    {15, "Character Syncronous Adapter"},  // spelled so: hosts match the text
    {16, "Zyx Channel to Channel Adapter"}, {17, "FDDI Adapter"}, {19, "Loopback Adapter"}, KENUM_END};

// The operating-system types of the DMTF list, each value one above the
// standard's, then the later Windows releases.
const korEnumDef OS_TYPE_ENUM_DEF[] = {
    {1, "Unknown"}, {2, "Other"}, {3, "MACOS"}, {4, "ATTUNIX"}, {5, "DGUX"}, {6, "DECNT"},
    {7, "Tru64 UNIX"}, {8, "OpenVMS"}, {9, "HPUX"}, {10, "AIX"}, {11, "MVS"}, {12, "OS400"},
    {13, "OS/2"}, {14, "JavaVM"}, {15, "MSDOS"}, {16, "WIN3x"}, {17, "WIN95"}, {18, "WIN98"},
    {19, "WINNT"}, {20, "WINCE"}, {21, "NCR3000"}, {22, "NetWare"}, {23, "OSF"}, {24, "DC/OS"},
    {25, "Reliant UNIX"}, {26, "SCO UnixWare"}, {27, "SCO OpenServer"}, {28, "Sequent"}, {29, "IRIX"},
    {30, "Solaris"}, {31, "SunOS"}, {32, "U6000"}, {33, "ASERIES"}, {34, "TandemNSK"}, {35, "TandemNT"},
    {36, "BS2000"}, {37, "LINUX"}, {38, "Lynx"}, {39, "XENIX"}, {40, "VM/ESA"}, {41, "Interactive UNIX"},
    {42, "BSDUNIX"}, {43, "FreeBSD"}, {44, "NetBSD"}, {45, "GNU Hurd"}, {46, "OS9"}, {47, "MACH Kernel"},
    {48, "Inferno"}, {49, "QNX"}, {50, "EPOC"}, {51, "IxWorks"}, {52, "VxWorks"}, {53, "MiNT"},
    {54, "BeOS"}, {55, "HP MPE"}, {56, "NextStep"}, {57, "PalmPilot"}, {58, "Rhapsody"},
    {59, "Windows 2000"}, {60, "Dedicated"}, {61, "OS/390"}, {62, "VSE"}, {63, "TPF"},
    {64, "Windows Millenium"},  // spelled so: hosts match the text
    {65, "Caldera Open UNIX"}, {66, "OpenBSD"}, {67, "Not Applicable"}, {68, "Windows XP"}, {69, "z/OS"},
    {70, "Microsoft Windows Server 2003"}, {71, "Microsoft Windows Server 2003 64-Bit"},
    {72, "Windows XP 64-Bit"}, {73, "Windows XP Embedded"}, {80, "Windows 2012"}, {81, "Windows 10"},
    {82, "Windows 2016"}, {83, "Windows 2019"}, {84, "Windows 11"}, {85, "Windows 2022"},
    {86, "Windows Other"}, KENUM_END};

// Values 1 to 70; 68 is deliberately unassigned.
const korEnumDef STORAGE_TYPE_ENUM_DEF[] = {
    {1, "Unknown"}, {2, "Other"}, {3, "Tape Cartridge"}, {4, "QIC Cartridge"}, {5, "AIT Cartridge"},
    {6, "DTF Cartridge"}, {7, "DAT Cartridge"}, {8, "8mm Tape Cartridge"}, {9, "19mm Tape Cartridge"},
    {10, "DLT Cartridge"}, {11, "Half-Inch Magnetic Tape Cartridge"}, {12, "Cartridge Disk"},
    {13, "JAZ Disk"}, {14, "ZIP Disk"}, {15, "SyQuest Disk"},
    {16, "Winchester Removable Disk "},  // the trailing blank belongs to the name
    {17, "CD-ROM"}, {18, "CD-ROM/XA"}, {19, "CD-I"}, {20, "CD Recordable"}, {21, "WORM"},
    {22, "Magneto-Optical"}, {23, "DVD"}, {24, "DVD-RW+"}, {25, "DVD-RAM"}, {26, "DVD-ROM"},
    {27, "DVD-Video"}, {28, "Divx"}, {29, "Floppy/Diskette"}, {30, "Hard Disk"}, {31, "Memory Card"},
    {32, "Hard Copy"}, {33, "Clik Disk"}, {34, "CD-RW"}, {35, "CD-DA"}, {36, "CD+"},
    {37, "DVD Recordable"}, {38, "DVD-RW"}, {39, "DVD-Audio"}, {40, "DVD-5"}, {41, "DVD-9"},
    {42, "DVD-10"}, {43, "DVD-18"}, {44, "Magneto-Optical Rewriteable"},
    {45, "Magneto-Optical Write Once"}, {46, "Magneto-Optical Rewriteable (LIMDOW)"},
    {47, "Phase Change Write Once"}, {48, "Phase Change Rewriteable"},
    {49, "Phase Change Dual Rewriteable"}, {50, "Ablative Write Once"}, {51, "Near Field Recording"},
    {52, "MiniQic"}, {53, "Travan"}, {54, "8mm Metal Particle"}, {55, "8mm Advanced Metal Evaporate"},
    {56, "NCTP"}, {57, "LTO Ultrium"}, {58, "LTO Accelis"}, {59, "9 Track Tape"}, {60, "18 Track Tape"},
    {61, "36 Track Tape"}, {62, "Magstar 3590"}, {63, "Magstar MP"}, {64, "D2 Tape"},
    {65, "Tape - DST Small"}, {66, "Tape - DST Medium"}, {67, "Tape - DST Large"},
    {69, "Direct Access Storage Device"}, {70, "Virtual Disc"}, KENUM_END};

// MBR partition-type bytes with their customary descriptions.
const korEnumDef FILE_SYSTEM_TYPE_ENUM_DEF[] = {
    {0x00, "Empty"}, {0x01, "DOS 12-bit FAT"}, {0x02, "XENIX root"}, {0x03, "XENIX /usr"},
    {0x04, "DOS 16-bit FAT"}, {0x05, "DOS extended"}, {0x06, "DOS 16-bit FAT (>32MB)"},
    {0x07, "OS/2 IFS | Windows NT NTFS | exFAT | Advanced Unix | QNX2.x pre-1988"},
    {0x08, "AIX boot | OS/2 (v1.0-1.3 only) | SplitDrive | Commodore DOS | DELL partition spanning multiple drives"},
    {0x09, "AIX data | Coherent filesystem | QNX 1.x and 2.x"}, {0x0A, "OS/2 Boot Manager | OPUS | Coherent swap"},
    {0x0B, "32-bit FAT"}, {0x0C, "32-bit FAT (LBA)"}, {0x0E, "16-bit FAT (LBA)"}, {0x0F, "Extended (LBA)"},
    {0x10, "OPUS"}, {0x11, "Hidden DOS 12-bit FAT"}, {0x12, "Compaq configuration | EISA configuration"},
    {0x14, "Hidden DOS 16-bit FAT <32M | AST DOS with logical sectored FAT"}, {0x16, "Hidden DOS 16-bit FAT >=32M"},
    {0x17, "Hidden IFS (HPFS/NTFS)"}, {0x18, "AST SmartSleep Partition"}, {0x1B, "Hidden WIN95 OSR2 32-bit FAT"}, {0x1C, "Hidden WIN95 OSR2 32-bit FAT, LBA-mapped"},
    {0x1E, "Hidden WIN95 16-bit FAT, LBA-mapped"}, {0x24, "NEC DOS 3.x"}, {0x27, "Windows RE hidden partition | PQservice | MirOS"},
    {0x35, "JFS on OS/2 or eCS"}, {0x38, "THEOS ver 3.2 2gb partition"}, {0x39, "Plan 9 partition | THEOS ver 4 spanned partition"},
    {0x3A, "THEOS ver 4 4gb partition"}, {0x3B, "THEOS ver 4 extended partition"},
    {0x3C, "PartitionMagic recovery partition"}, {0x3D, "Hidden NetWare"}, {0x40, "Venix 80286"},
    {0x41, "Linux/MINIX (sharing disk with DRDOS) | Personal RISC Boot | PPC PReP Boot"},
    {0x42, "Linux swap (sharing disk with DRDOS) | SFS | Windows 2000 dynamic extended partition marker"},
    {0x43, "Linux native (sharing disk with DRDOS)"}, {0x45, "Boot-US boot manager | Priam | EUMEL/Elan"}, {0x4C, "Oberon partition"}, {0x4D, "QNX4.x"}, {0x4E, "QNX4.x 2nd part"}, {0x4F, "QNX4.x 3rd part | Oberon partition"},
    {0x50, "OnTrack Disk Manager (older versions) RO | Lynx RTOS | Native Oberon (alt)"},
    {0x51, "OnTrack Disk Manager RW (DM6 Aux1) | Novell"}, {0x52, "CP/M | Microport SysV/AT"},
    {0x53, "Disk Manager 6.0 Aux3"}, {0x54, "Disk Manager 6.0 Dynamic Drive Overlay (DDO)"},
    {0x55, "EZ-Drive"}, {0x56, "Golden Bow VFeature Partitioned Volume | DM converted to EZ-BIOS"},
    {0x57, "DrivePro | VNDI Partition"}, {0x5C, "Priam EDisk"}, {0x61, "SpeedStor"},
    {0x63, "Unix System V (SCO, ISC Unix, UnixWare, ...), Mach, GNU Hurd"},
    {0x64, "PC-ARMOUR protected partition | Novell Netware 286, 2.xx"}, {0x65, "Novell Netware 386, 3.xx or 4.xx"},
    {0x66, "Novell Netware SMS Partition"}, {0x67, "Novell"}, {0x68, "Novell"},
    {0x69, "Novell Netware 5+, Novell Netware NSS Partition"}, {0x70, "DiskSecure Multi-Boot"},
    {0x74, "Scramdisk partition"}, {0x75, "IBM PC/IX"}, {0x77, "M2FS/M2CS partition | VNDI Partition"},
    {0x78, "XOSL FS"}, {0x80, "MINIX until 1.4a"}, {0x81, "MINIX since 1.4b, early Linux | Mitac disk manager"},
    {0x82, "Linux swap | Solaris x86"}, {0x83, "Linux native partition"},
    {0x84, "OS/2 hidden C: drive | Hibernation partition"}, {0x85, "Linux extended partition"},
    {0x86, "Old Linux RAID partition superblock | FAT16 volume set"}, {0x87, "NTFS volume set"},
    {0x88, "Linux plaintext partition table"}, {0x8A, "Linux Kernel Partition (used by AiR-BOOT)"},
    {0x8E, "Linux Logical Volume Manager partition"}, {0x93, "Amoeba | Hidden Linux native partition"},
    {0x94, "Amoeba bad block table"}, {0x9F, "BSD/OS"}, {0xA0, "Laptop hibernation partition"},
    {0xA5, "BSD/386, 386BSD, NetBSD, FreeBSD"}, {0xA6, "OpenBSD"}, {0xA7, "NeXTStep"},
    {0xA8, "Mac OS-X"}, {0xA9, "NetBSD"}, {0xAB, "Mac OS-X Boot partition"},
    {0xAF, "MacOS X HFS"}, {0xB7, "BSDI BSD/386 filesystem"}, {0xB8, "BSDI BSD/386 swap partition"},
    {0xBE, "Solaris 8 boot partition"}, {0xBF, "New Solaris x86 partition"},
    {0xC1, "DRDOS/secured (FAT-12)"}, {0xC4, "DRDOS/secured (FAT-16, < 32M)"},
    {0xC6, "DRDOS/secured (FAT-16, >= 32M) | Windows NT corrupted FAT16 volume/stripe set"},
    {0xDA, "Non-FS Data"}, {0xDB, "Digital Research CP/M, Concurrent CP/M, Concurrent DOS | CTOS"},
    {0xDE, "Dell PowerEdge Server utilities (FAT fs)"}, {0xEB, "BeOS BFS"},
    {0xEE, "Indication that this legacy MBR is followed by an EFI header"},
    {0xEF, "Partition that contains an EFI file system"}, {0xFB, "VMware File System partition"},
    {0xFC, "VMware Swap partition"}, {0xFD, "Linux raid partition with autodetect using persistent superblock"},
    {0xFE, "SpeedStor > 1024 cyl. | LANstep | IBM PS/2 IML"}, {0xFF, "Xenix Bad Block Table"},
    KENUM_END};

// The SMBIOS processor-family list; "Alpah 21064" is spelled so: hosts match the text.
const korEnumDef PROCESSOR_FAMILY_ENUM_DEF[] = {
    {1, "Other"}, {2, "Unknown"}, {3, "8086"}, {4, "80286"}, {5, "80386"}, {6, "80486"}, {7, "8087"},
    {8, "80287"}, {9, "80387"}, {10, "80487"}, {11, "Pentium(R) brand"}, {12, "Pentium(R) Pro"},
    {13, "Pentium(R) II"}, {14, "Pentium(R) processor with MMX(TM) technology"}, {15, "Celeron(TM)"},
    {16, "Pentium(R) II Xeon(TM)"}, {17, "Pentium(R) III"}, {18, "M1 Family"}, {19, "M2 Family"},
    {24, "K5 Family"}, {25, "K6 Family"}, {26, "K6-2"}, {27, "K6-3"}, {28, "AMD Athlon(TM) Processor Family"},
    {29, "AMD2900 Family"}, {30, "K6-2+"}, {32, "Power PC Family"}, {33, "Power PC 601"},
    {34, "Power PC 603"}, {35, "Power PC 603+"}, {36, "Power PC 604"}, {37, "Power PC 620"},
    {38, "Power PC X704"}, {39, "Power PC 750"}, {48, "Alpha Family"}, {49, "Alpah 21064"},
    {50, "Alpha 21066"}, {51, "Alpha 21164"}, {52, "Alpha 21164PC"}, {53, "Alpha 21164a"},
    {54, "Alpha 21264"}, {55, "Alpha 21364"}, {64, "MIPS Family"}, {65, "MIPS R4000"}, {66, "MIPS R4200"},
    {67, "MIPS R4400"}, {68, "MIPS R4600"}, {69, "MIPS R10000"}, {80, "SPARC Family"}, {81, "SuperSPARC"},
    {82, "microSPARC II"}, {83, "microSPARC IIep"}, {84, "UltraSPARC"}, {85, "UltraSPARC II"},
    {86, "UltraSPARC IIi"}, {87, "UltraSPARC III"}, {88, "UltraSPARC IIIi"}, {96, "68040"},
    {97, "68xxx Family"}, {98, "68000"}, {99, "68010"}, {100, "68020"}, {101, "68030"},
    {112, "Hobbit Family"}, {120, "Crusoe(TM) TM5000 Family"}, {121, "Crusoe(TM) TM3000 Family"},
    {122, "Efficeon(TM) TM8000 Family"}, {128, "Weitek"}, {130, "Itanium(TM) Processor"},
    {131, "AMD Athlon(TM) 64 Processor Family"}, {132, "AMD Opteron(TM) Processor Family"},
    {133, "AMD Sempron(TM) Processor Family"}, {134, "AMD Turion(TM) 64 Mobile Technology"},
    {135, "Dual-Core AMD Opteron(TM) Processor Family"}, {136, "AMD Athlon(TM) 64 X2 Dual-Core Processor Family"},
    {137, "AMD Turion(TM) 64 X2 Mobile Technology"}, {138, "Quad-Core AMD Opteron(TM) Processor Family"},
    {139, "Third-Generation AMD Opteron(TM) Processor Family"}, {140, "AMD Phenom(TM) FX Quad-Core Processor Family"},
    {141, "AMD Phenom(TM) X4 Quad-Core Processor Family"}, {142, "AMD Phenom(TM) X2 Dual-Core Processor Family"},
    {143, "AMD Athlon(TM) X2 Dual-Core Processor Family"}, {144, "PA-RISC Family"}, {145, "PA-RISC 8500"},
    {146, "PA-RISC 8000"}, {147, "PA-RISC 7300LC"}, {148, "PA-RISC 7200"}, {149, "PA-RISC 7100LC"},
    {150, "PA-RISC 7100"}, {160, "V30 Family"}, {161, "Quad-Core Intel(R) Xeon(R) processor 3200 Series"},
    {162, "Dual-Core Intel(R) Xeon(R) processor 3000 Series"}, {163, "Quad-Core Intel(R) Xeon(R) processor 5300 Series"},
    {164, "Dual-Core Intel(R) Xeon(R) processor 5100 Series"}, {165, "Dual-Core Intel(R) Xeon(R) processor 5000 Series"},
    {166, "Dual-Core Intel(R) Xeon(R) processor LV"}, {167, "Dual-Core Intel(R) Xeon(R) processor ULV"},
    {168, "Dual-Core Intel(R) Xeon(R) processor 7100 Series"}, {169, "Quad-Core Intel(R) Xeon(R) processor 5400 Series"},
    {170, "Quad-Core Intel(R) Xeon(R) processor"}, {176, "Pentium(R) III Xeon(TM)"},
    {177, "Pentium(R) III Processor with Intel(R) SpeedStep(TM) Technology"}, {178, "Pentium(R) 4"},
    {179, "Intel(R) Xeon(TM)"}, {180, "AS400 Family"}, {181, "Intel(R) Xeon(TM) processor MP"},
    {182, "AMD Athlon(TM) XP Family"}, {183, "AMD Athlon(TM) MP Family"}, {184, "Intel(R) Itanium(R) 2"},
    {185, "Intel(R) Pentium(R) M processor"}, {186, "Intel(R) Celeron(R) D processor"},
    {187, "Intel(R) Pentium(R) D processor"}, {188, "Intel(R) Pentium(R) Processor Extreme Edition"},
    {190, "K7"}, {200, "IBM390 Family"}, {201, "G4"}, {202, "G5"}, {203, "ESA/390 G6"},
    {204, "z/Architecture base"}, {250, "i860"}, {251, "i960"}, {280, "ARM"},
    {281, "StrongARM"}, {320, "WinChip"}, {350, "DSP"},
    {500, "Video Processor"}, KENUM_END};

const korEnumDef MONITOR_STATUS_ENUMS_DEF[] = {{1, "Primary"}, {2, "Secondary"}, {3, "Offline"}, KENUM_END};
const korEnumDef MODEM_DEVTYPE_ENUMS_DEF[] = {
    {1, "External Modem"}, {2, "Internal Modem"}, {3, "PCMCIA Modem"}, {4, "Other"}, KENUM_END};
const korEnumDef USB_DEVICE_IS_HUB_ENUM_DEF[] = {{0, "False"}, {1, "True"}, KENUM_END};
const korEnumDef USB_DEVICE_CLASS_ENUM_DEF[] = {
    {0, "Reserved"}, {1, "Audio"}, {2, "Communications"}, {3, "Human Interface"}, {4, "Monitor"},
    {5, "Physical Interface"}, {6, "Power"}, {7, "Printer"}, {8, "Storage"}, {9, "HUB"},
    {255, "Vendor Specific"}, KENUM_END};
const korEnumDef POINTING_DEVICE_TYPE_ENUM_DEF[] = {
    {1, "Other"}, {2, "Unknown"}, {3, "Mouse"}, {4, "Track Ball"}, {5, "Track Point"}, {6, "Glide Point"},
    {7, "Touch Pad"}, {8, "Touch Screen"}, {9, "Mouse - Optical Sensor"}, KENUM_END};
const korEnumDef HWSEC_POP_ENUM_DEF[] = {
    {0, "Disabled"}, {1, "Enabled"}, {2, "Unsupported"}, {3, "Unknown"}, KENUM_END};
const korEnumDef KOR_ATTRIB_SMBIOS_ENCLOSURE_TYPE_ENUM_DEF[] = {
    {1, "Other"}, {2, "Unknown"}, {3, "Desktop"}, {4, "Low Profile Desktop"}, {5, "Pizza Box"},
    {6, "Mini Tower"}, {7, "Tower"}, {8, "Portable"}, {9, "LapTop"}, {10, "Notebook"}, {11, "Hand Held"},
    {12, "Docking Station"}, {13, "All in One"}, {14, "Sub Notebook"}, {15, "Space-saving"},
    {16, "Lunch Box"}, {17, "Main Server Chassis"}, {18, "Expansion Chassis"}, {19, "SubChassis"},
    {20, "Bus Expansion Chassis"}, {21, "Peripheral Chassis"}, {22, "RAID Chassis"},
    {23, "Rack Mount Chassis"}, {24, "Sealed-case PC"}, {25, "Multi-system chassis"}, KENUM_END};

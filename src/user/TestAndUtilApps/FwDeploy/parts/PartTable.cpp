#include "parts/PartTable.h"

const std::array<PartRow, 28> kPartRows = {{
    {"belmara", "BLMX", 0, 0, 2, 2, "BLMX0202.rbi"},   {"dovu", "DVUX", 0, 0, 2, 2, "DVUX0202.rbi"},
    {"pelgrimar", "PLGR", 0, 0, 2, 3, "PLGR0201.rbi"}, {"fwcore", "BROX", 0, 0, 2, 3, "BROX0201.rbi"},
    {"ulmen", "ULMN", 0, 0, 2, 3, "ULMN0101.rbi"},     {"tulmen", "TULM", 0, 0, 2, 2, "TULM0002.rbi"},
    {"vulmen", "VULM", 0, 0, 2, 3, "VULM0101.rbi"},    {"tolmarn", "TLM_", 0, 0, 2, 3, "TLM_0104.rbi"},
    {"bkarvel", "KRVL", 0, 0, 2, 2, "KRVL0101.rbi"},   {"dkarvel", "KRVL", 0, 0, 2, 2, "KRVL0101.rbi"},
    {"spacer", "SPCR", 0, 0, 1, 1, "SPCT.rbi"},  // the file's stem differs from the id, and is right
    {"pico", "PICO", 0, 0, 1, 1, "PICO.rbi"},          {"xandrel", "XNDR", 0, 0, 1, 1, "XNDR.rbi"},
    {"yorvalen", "YRVL", 0, 0, 1, 1, "YRVL.rbi"},      {"yorvalenx", "YRVX", 0, 0, 1, 1, "YRVX.rbi"},
    {"qindel", "QNDL", 0, 0, 1, 1, "QNDL.rbi"},        {"teskpro", "TSKP", 0, 0, 1, 1, "TSKP.rbi"},
    {"enc1", "ENCD", 0, 0, 1, 1, "ENCD.rbi"},          {"enc1b", "ENSC", 0, 0, 1, 1, "ENSC.rbi"},
    {"vid1", "ENVC", 0, 0, 1, 1, "ENVC.rbi"},          {"enc2", "ENCD", 0, 0, 1, 1, "ENCD.rbi"},
    {"enc2b", "ENSC", 0, 0, 1, 1, "ENSC.rbi"},         {"vid2", "ENVC", 0, 0, 1, 1, "ENVC.rbi"},
    {"vqxpwr", "VQPW", 0, 0, 1, 1, "VQPW.rbi"},        {"vqxpwrx", "VQPX", 0, 0, 1, 1, "VQPX.rbi"},
    {"jqxpwr", "JQPW", 0, 0, 1, 1, "JQPW.rbi"},        {"jqxpwrx", "JQPX", 0, 0, 1, 1, "JQPX.rbi"},
    {"jqxpwry", "JQPY", 0, 0, 1, 1, "JQPY.rbi"},
}};

// The payload of every tree node.
#pragma once

#include <string>

enum NodeType : long {
    nodeTypeCategoryEvents = 0,
    nodeTypeCategoryRecipients = 1,
    nodeTypeCategoryReports = 2,
    nodeTypeCategoryExclusions = 3,
    nodeTypeEvent = 4,
    nodeTypeEventRecipient = 5,
    nodeTypeRecipient = 6,
    nodeTypeReport = 7,
    nodeTypeReportItem = 8,
    nodeTypeEventRecipientDevice = 9,
    nodeTypeRecipientEvent = 10,
    nodeTypeExclusion = 11,
};

struct classNodeInfo {
    bool Undeletable = false;  // kept for nodes that may not be deleted; nothing reads it
    long nodeType = nodeTypeCategoryEvents;
    std::string ToolTip;  // base text of the hover tip
    long key = 0;         // database key of what the node stands for; 0 on root nodes
};

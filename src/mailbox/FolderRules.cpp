#include "mailbox/FolderRules.h"

#include "mailbox/FolderTree.h"

namespace {

/// A child of the root that is not of the root's family: the six on top.
bool IsTopFolder(const FolderNode &node)
{
    return node.parent->strKey == "1000" && node.Family != FolderFamily::Root;
}

} // namespace

bool CanAddFolder(const FolderNode *node)
{
    return node && node->parent && node->strKey != "1003" && node->strKey != "1004";
}

bool CanChangeFolder(const FolderNode *node)
{
    if (!CanAddFolder(node))
        return false;
    const bool isBranchOfSent = node->parent->strKey == "1004" && node->Family != FolderFamily::Root;
    return !IsTopFolder(*node) && !isBranchOfSent;
}

bool CanDragFolder(const FolderNode *node)
{
    return node && node->parent && !IsTopFolder(*node) && node->parent->strKey != "1004";
}

bool CanDropFolder(const FolderNode *source, const FolderNode *target)
{
    if (!source || !target || target == source->parent || target->strKey == "1004")
        return false;
    for (const FolderNode *above = target; above; above = above->parent) {
        if (above == source)
            return false;
    }
    return source->Family == target->Family;
}

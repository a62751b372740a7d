#pragma once

struct FolderNode;

// What may be done with a folder. Null stands for no folder.

/// A new folder may be made in it: not in the root, Outgoing and Sent.
bool CanAddFolder(const FolderNode *node);
/// It may be renamed and deleted: the system's own folders may not.
bool CanChangeFolder(const FolderNode *node);
/// It may be dragged elsewhere: only the user's own folders may.
bool CanDragFolder(const FolderNode *node);
/// A dragged folder may be dropped on the target: on a folder of its own family that is neither its parent
/// nor part of its subtree.
bool CanDropFolder(const FolderNode *source, const FolderNode *target);

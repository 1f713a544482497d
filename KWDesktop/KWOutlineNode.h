#pragma once

#include <KWDesktop/KWOutlineModel.h>

/// A row of an outline, or its root.
struct KWOutlineModel::Node {
    Item item;
    Node* parent = nullptr;
    int row = 0;
    bool isExpandable = false;
    bool isLoaded = false; ///< whether the children have been asked for
    std::vector<std::unique_ptr<Node>> children;

    void renumber() {
        for (std::size_t k = 0; k < children.size(); ++k)
            children[k]->row = static_cast<int>(k);
    }
};

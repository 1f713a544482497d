#pragma once

#include "ViewTestSupport.h"

#include <KWBase/KWChannel.h>
#include <KWDesktop/KWOutlineModel.h>

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QTreeView>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

/// An item of an outline with its children; a leaf when it is not a folder.
struct TestItem final : KWObject {
    explicit TestItem(std::string itemName, bool folder = true)
        : name(std::move(itemName)), isFolder(folder) {}

    std::string name;
    bool isFolder;
    float value = 0;
    std::vector<std::shared_ptr<TestItem>> children;
};

using TestItemPointer = std::shared_ptr<TestItem>;

/// A data source of such items, and of channels as leaves.
class TestSource final : public KWOutlineDataSource {
  public:
    ~TestSource() override { resignAsDataSource(); }

    TestItem& at(const std::shared_ptr<KWObject>& item) const {
        return item ? dynamic_cast<TestItem&>(*item) : *root;
    }
    TestItemPointer add(const std::string& name, const TestItemPointer& parent = nullptr,
                        bool folder = true) {
        auto item = std::make_shared<TestItem>(name, folder);
        at(parent).children.push_back(item);
        return item;
    }

    int outlineViewNumberOfChildrenOfItem(const QTreeView* asking,
                                          const std::shared_ptr<KWObject>& item) override {
        EXPECT_EQ(asking, view);
        ++questions;
        if (also)
            also();
        return static_cast<int>(at(item).children.size()) + missing;
    }
    std::shared_ptr<KWObject>
    outlineViewChildOfItem(const QTreeView*, int index,
                           const std::shared_ptr<KWObject>& item) override {
        return at(item).children.at(static_cast<std::size_t>(index));
    }
    bool outlineViewIsItemExpandable(const QTreeView*,
                                     const std::shared_ptr<KWObject>& item) override {
        return at(item).isFolder;
    }
    QVariant
    outlineViewObjectValueForTableColumnByItem(const QTreeView*, std::string_view column,
                                               const std::shared_ptr<KWObject>& item) override {
        if (column == "values") {
            ++valuesAsked;
            return at(item).isFolder ? QVariant() : QVariant(at(item).value);
        }
        return QVariant::fromValue(KWAttributedString{QString::fromStdString(at(item).name),
                                                      KWOutlineTextAttributesForIndex(0)});
    }
    bool outlineViewShouldEditTableColumnItem(const QTreeView*, std::string_view column,
                                              const std::shared_ptr<KWObject>& item) override {
        return column == "values" && !at(item).isFolder;
    }
    void
    outlineViewSetObjectValueForTableColumnByItem(const QTreeView*, const QVariant& value,
                                                  std::string_view,
                                                  const std::shared_ptr<KWObject>& item) override {
        at(item).value = value.toFloat();
    }
    void outlineViewSelectionDidChange(QTreeView* asking) override {
        const auto* const model = static_cast<KWOutlineModel*>(asking->model());
        const auto item = model->selectedItem();
        told.push_back(item ? at(item).name : "-");
    }

    TestItemPointer root = std::make_shared<TestItem>("root");
    const QTreeView* view = nullptr;
    /// How many rows more than there are the source counts.
    int missing = 0;
    int questions = 0;
    int valuesAsked = 0;
    std::function<void()> also;
    /// The names of the items whose selection was told, "-" for none.
    std::vector<std::string> told;
};

inline void passEventLoop() {
    QCoreApplication::processEvents();
    QCoreApplication::processEvents();
}

/// The names of the rows that a view shows from top to bottom, with a dot for each level, and "+"
/// behind those that are open.
inline std::string shownRows(const QTreeView& view) {
    std::string text;
    const std::function<void(const QModelIndex&, const std::string&)> add =
        [&](const QModelIndex& parent, const std::string& dots) {
            const QAbstractItemModel& model = *view.model();
            for (int row = 0; row < model.rowCount(parent); ++row) {
                const QModelIndex index = model.index(row, 0, parent);
                const bool isOpen = view.isExpanded(index) && model.hasChildren(index);
                text += (text.empty() ? "" : " ") + dots + index.data().toString().toStdString() +
                        (isOpen ? "+" : "");
                if (isOpen)
                    add(index, dots + ".");
            }
        };
    add({}, "");
    return text;
}

/// The same, by walking from one row to the next below it on the screen, without the signs.
inline std::vector<std::string> rowsByWalking(const QTreeView& view) {
    std::vector<std::string> names;
    for (QModelIndex index = view.model()->index(0, 0); index.isValid();
         index = view.indexBelow(index))
        names.push_back(index.siblingAtColumn(0).data().toString().toStdString());
    return names;
}

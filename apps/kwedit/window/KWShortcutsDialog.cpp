#include <apps/kwedit/window/KWEditCommands.h>
#include <apps/kwedit/window/KWShortcutsDialog.h>

#include <QDialogButtonBox>
#include <QHeaderView>
#include <QLineEdit>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace {

QString shortcutsOf(const KWEditCommand& command) {
    const auto keys = QKeySequence::listFromString(QString::fromLatin1(command.shortcut),
                                                   QKeySequence::PortableText);
    QStringList texts;
    for (const QKeySequence& key : keys)
        texts << key.toString(QKeySequence::NativeText);
    return texts.join(QStringLiteral(", "));
}

QTreeWidgetItem* headingOf(KWEditMenu menu, QTreeWidget& list) {
    QString title = KWEditCommands::title(menu);
    title.remove(QLatin1Char('&'));
    auto* const heading = new QTreeWidgetItem(&list, {title});
    QFont bold = list.font();
    bold.setBold(true);
    heading->setFont(0, bold);
    heading->setFirstColumnSpanned(true);
    return heading;
}

void fill(QTreeWidget& list) {
    QTreeWidgetItem* heading = nullptr;
    const KWEditCommand* last = nullptr;
    for (const KWEditCommand& command : KWEditCommands::table()) {
        if (!last || last->menu != command.menu)
            heading = headingOf(command.menu, list);
        last = &command;
        new QTreeWidgetItem(heading, {KWEditCommands::plainText(command), shortcutsOf(command),
                                      KWEditCommands::tip(command)});
    }
    list.expandAll();
}

void filter(const QTreeWidget& list, const QString& text) {
    for (int index = 0; index < list.topLevelItemCount(); ++index) {
        QTreeWidgetItem* const heading = list.topLevelItem(index);
        bool isAnyShown = false;
        for (int row = 0; row < heading->childCount(); ++row) {
            QTreeWidgetItem* const item = heading->child(row);
            const bool isShown = item->text(0).contains(text, Qt::CaseInsensitive) ||
                                 item->text(1).contains(text, Qt::CaseInsensitive) ||
                                 item->text(2).contains(text, Qt::CaseInsensitive);
            item->setHidden(!isShown);
            isAnyShown |= isShown;
        }
        heading->setHidden(!isAnyShown);
    }
}

} // namespace

KWShortcutsDialog::KWShortcutsDialog(QWidget* parent) : QDialog(parent) {
    setWindowTitle(tr("Commands and Shortcuts"));
    auto* const search = new QLineEdit;
    search->setPlaceholderText(tr("Search"));
    search->setAccessibleName(tr("Search"));
    search->setClearButtonEnabled(true);
    auto* const list = new QTreeWidget;
    list->setAccessibleName(tr("Commands"));
    list->setHeaderLabels({tr("Command"), tr("Shortcut"), tr("What it does")});
    list->setRootIsDecorated(false);
    list->setSelectionMode(QAbstractItemView::SingleSelection);
    fill(*list);
    list->header()->setSectionResizeMode(0, QHeaderView::ResizeToContents);
    list->header()->setSectionResizeMode(1, QHeaderView::ResizeToContents);
    connect(search, &QLineEdit::textChanged, list,
            [list](const QString& text) { filter(*list, text); });
    auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Close);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* const column = new QVBoxLayout(this);
    column->addWidget(search);
    column->addWidget(list);
    column->addWidget(buttons);
    resize(920, 600);
}

#pragma once

#include <KWFoundation/KWNotificationCenter.h>

#include <apps/kwedit/KWEditDocument.h>
#include <apps/kwedit/KWSpriteChannels.h>

#include <QDialog>
#include <QPointer>
#include <QWidget>
#include <vector>

class QComboBox;
class QDialogButtonBox;
class QLineEdit;
class QMenu;
class QToolButton;
class QTreeWidget;
class QTreeWidgetItem;

/// Asks for a channel of any name: name, group and unit.
class KWNewChannelDialog : public QDialog {
    Q_OBJECT

  public:
    /// The groups that are there to choose from.
    explicit KWNewChannelDialog(const QStringList& groups, QWidget* parent = nullptr);

    QString channelName() const;
    /// "" for none.
    QString groupName() const;
    /// A channel's.
    int unitType() const;

  private:
    QLineEdit* _name;
    QComboBox* _group;
    QComboBox* _unit;
};

/// The channels of an element as a small outline, with buttons to add, remove and rename them. A
/// name is edited in place, by a double click or F2. The document must outlive it.
class KWElementChannelsView : public QWidget {
    Q_OBJECT

  public:
    explicit KWElementChannelsView(KWEditDocument& document, QWidget* parent = nullptr);

    const std::shared_ptr<KWElement>& element() const { return _element; }
    /// Null for none.
    void setElement(const std::shared_ptr<KWElement>& element);

    /// Null for none, and for a group.
    std::shared_ptr<KWChannel> currentChannel() const;
    /// Sends no signal.
    void setCurrentChannel(const std::shared_ptr<KWChannel>& channel);

    /// Makes the channel that a sprite, or the stage, has for a role, at its usual place, keyframed
    /// and with the value that changes nothing.
    std::shared_ptr<KWChannel> addChannelForRole(KWSpriteRole role);
    std::shared_ptr<KWChannel> addChannel(const QString& name, const QString& group, int unitType);
    /// What a role is called in the menu.
    static QString roleTitle(KWSpriteRole role);

  public Q_SLOTS:
    /// Asks for a channel of any name, and adds it.
    void askForChannel();
    void removeCurrentChannel();
    void renameCurrentChannel();

  Q_SIGNALS:
    /// Chosen by the user; null for none.
    void currentChannelChanged(const std::shared_ptr<KWChannel>& channel);

  private:
    void follow();
    void followSoon();
    void fillMenu();
    QTreeWidgetItem* itemOf(const std::shared_ptr<KWChannel>& channel) const;
    std::shared_ptr<KWChannel> channelOf(const QTreeWidgetItem* item) const;
    void addItem(QTreeWidgetItem* parent, const std::shared_ptr<KWChannel>& channel);
    std::shared_ptr<KWChannel> addKeyFramed(const QString& name, const QString& group, int unitType,
                                            float value);
    void updateButtons();
    void updateHeight();

    QPointer<KWEditDocument> _document;
    std::shared_ptr<KWElement> _element;
    KWNotificationToken _changes;
    QTreeWidget* _tree;
    QMenu* _menu;
    QToolButton* _add;
    QToolButton* _remove;
    QToolButton* _rename;
    std::vector<std::shared_ptr<KWChannel>> _channels; ///< of the items
    bool _isFollowing = false;
    bool _isFollowPending = false;
};

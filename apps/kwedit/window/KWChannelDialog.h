#pragma once

#include <apps/kwedit/KWEditDocument.h>

#include <QDialog>

class QComboBox;
class QLineEdit;

/// Asks for a new channel's name, group, kind and unit. For what a sprite's channels do, the list
/// of names offers those that the stage knows.
class KWChannelDialog : public QDialog {
    Q_OBJECT

  public:
    KWChannelDialog(const KWElement& element, QWidget* parent = nullptr);

    /// Without group and owner. "x", for example, comes with the unit of lengths.
    std::shared_ptr<KWChannel> makeChannel() const;
    QString group() const;

    /// Asks, and adds the channel as a step; null when the user has changed their mind.
    static std::shared_ptr<KWChannel> addChannel(KWEditDocument& document,
                                                 const std::shared_ptr<KWElement>& element,
                                                 QWidget* parent);

  private:
    void nameChosen(const QString& name);

    QComboBox* _name;
    QComboBox* _group;
    QComboBox* _kind;
    QComboBox* _unit;
};

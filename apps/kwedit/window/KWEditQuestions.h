#pragma once

#include <apps/kwedit/KWEditDocument.h>

#include <QStringList>
#include <QWidget>
#include <optional>

/// What a window asks its user. The answers here come from dialogs; tests give their own.
class KWEditQuestions {
  public:
    virtual ~KWEditQuestions();

    enum class Unsaved { save, discard, cancel };
    struct Target {
        QString path;
        KWEditDocument::Form form;
    };

    /// Documents to open; none when the user has changed their mind.
    virtual QStringList documentsToOpen(QWidget* window, const QString& folder);
    virtual std::optional<Target> whereToSave(QWidget* window, const QString& title,
                                              const QString& path, KWEditDocument::Form form);
    /// Pictures and movies.
    virtual QStringList filesToPlace(QWidget* window, const QString& folder);
    virtual Unsaved whatOfUnsaved(QWidget* window, const QString& name);
    /// True for going on.
    virtual bool mayGoOn(QWidget* window, const QString& text, const QString& detail,
                         const QString& button);
    /// What becomes of the copy of a document that a crash has left.
    enum class Copy { recover, discard, later };
    virtual Copy whatOfCopy(QWidget* window, const QString& text, const QString& detail);
    virtual QString name(QWidget* window, const QString& title, const QString& label,
                         const QString& old);
    virtual void complain(QWidget* window, const QString& text, const QString& reason);
};

#pragma once

#include <apps/kwedit/KWEditDocument.h>
#include <apps/kwedit/KWEditTransport.h>

#include <QObject>
#include <QPointer>
#include <optional>

/// Keeps a transport's rate and range those of a document's stage: at once, with another document,
/// and after each edit of them. Both must outlive it.
class KWEditStageTiming : public QObject {
    Q_OBJECT

  public:
    KWEditStageTiming(KWEditDocument& document, KWEditTransport& transport,
                      QObject* parent = nullptr);

    // Edits of the document, each a step that can be undone. What is out of bounds is held there,
    // as KWStage has them; not a number changes nothing.

    void setRate(double framesPerSecond);
    /// In seconds; an end before the beginning counts as it.
    void setRange(double from, double to);

  private:
    void follow();
    void change(const KWStage& stage, const QString& name);

    QPointer<KWEditDocument> _document;
    QPointer<KWEditTransport> _transport;
    std::optional<KWStage> _applied;
};

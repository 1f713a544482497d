#pragma once

#include <KWBase/KWChannel.h>
#include <KWFoundation/KWExport.h>

#include <QObject>
#include <QPointer>
#include <memory>

/// What a controller is about to do, or has done, to a channel.
enum class KWChannelEdit {
    keys,          ///< keys were added, moved, or removed with mouse or keyboard in a curve view
    shape,         ///< tension, continuity or bias of keys
    type,          ///< another kind of channel takes the channel's place
    paste,         ///< a copy of another channel takes the channel's place
    expression,    ///< the text of an algebraic channel
    value,         ///< a typed value
    interpolation, ///< the interpolation mode of a keyframed channel
    repeat,        ///< the repeat mode of a keyframed channel
};

/// What edits channels on behalf of the user, and says so to whoever listens: hosts that record
/// undo (KWChannelUndoRecorder) or mark their documents as edited.
class KW_EXPORT KWChannelEditSource : public QObject {
    Q_OBJECT

  public:
    explicit KWChannelEditSource(QObject* parent = nullptr);
    ~KWChannelEditSource() override;

  Q_SIGNALS:
    // Each willEdit is followed by exactly one didEdit of the same kind, also when nothing was
    // changed after all; pairs do not nest. A drag of a slider or of the mouse is one pair as a
    // whole. After a replacement the second channel is the new one, before and when it was refused
    // the old one. None is null.
    void willEdit(KWChannelEdit edit, const std::shared_ptr<KWChannel>& channel);
    void didEdit(KWChannelEdit edit, const std::shared_ptr<KWChannel>& channel);

  protected:
    /// One pair from the outside in: tells willEdit when it is made and didEdit when it goes.
    class KW_EXPORT Edit {
      public:
        Edit(KWChannelEditSource& source, KWChannelEdit kind, std::shared_ptr<KWChannel> channel);
        ~Edit();
        Edit(const Edit&) = delete;
        Edit& operator=(const Edit&) = delete;
        /// The channel that stands there now.
        void setChannel(std::shared_ptr<KWChannel> channel) { _channel = std::move(channel); }

      private:
        QPointer<KWChannelEditSource> _source;
        KWChannelEdit _kind;
        std::shared_ptr<KWChannel> _channel;
    };
};

Q_DECLARE_METATYPE(KWChannelEdit)

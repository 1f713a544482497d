#include <KWDesktop/KWChannelEditSource.h>

KWChannelEditSource::KWChannelEditSource(QObject* parent) : QObject(parent) {
    qRegisterMetaType<KWChannelEdit>();
}

KWChannelEditSource::~KWChannelEditSource() = default;

KWChannelEditSource::Edit::Edit(KWChannelEditSource& source, KWChannelEdit kind,
                                std::shared_ptr<KWChannel> channel)
    : _source(&source), _kind(kind), _channel(std::move(channel)) {
    Q_EMIT source.willEdit(_kind, _channel);
}

KWChannelEditSource::Edit::~Edit() {
    // What the edit led to may have been the end of its source.
    if (_source)
        Q_EMIT _source->didEdit(_kind, _channel);
}

#pragma once

#include "platform/FileStore.h"

#include <QIODevice>

namespace quarry {

/// A sink as a device, for Qt's writers. It stops taking anything after the sink refused something.
class SinkDevice final : public QIODevice {
public:
    explicit SinkDevice(ByteSink& sink) : _sink(sink) { open(QIODevice::WriteOnly | QIODevice::Unbuffered); }
    [[nodiscard]] bool isFine() const { return _isFine; }
    [[nodiscard]] bool isSequential() const override { return true; }

protected:
    qint64 readData(char* /*data*/, qint64 /*maxSize*/) override { return -1; }
    qint64 writeData(const char* data, qint64 size) override
    {
        _isFine = _isFine && _sink.append(data, static_cast<std::size_t>(size));
        return _isFine ? size : -1;
    }

private:
    ByteSink& _sink;
    bool _isFine = true;
};

} // namespace quarry

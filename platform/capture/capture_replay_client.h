#pragma once

#include "platform/api/wireless_client.h"
#include "platform/capture/capture_replay_interface.h"

// The backend of a replayed capture: one interface, "capture0", that plays the file.
namespace platform::capture {

class CaptureReplayClient final : public platform::WirelessClient {
public:
    explicit CaptureReplayClient(std::shared_ptr<CaptureReplayInterface> replay);

    QStringList interfaceNames() const override;
    std::shared_ptr<platform::WirelessInterface> interfaceWithName(const QString& name) override;
    QString statusText() const override;
    QStringList toolBackendArguments() const override;

private:
    std::shared_ptr<CaptureReplayInterface> replay_;
};

} // namespace platform::capture

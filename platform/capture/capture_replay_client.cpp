#include "platform/capture/capture_replay_client.h"

namespace platform::capture {

CaptureReplayClient::CaptureReplayClient(std::shared_ptr<CaptureReplayInterface> replay) : replay_(std::move(replay)) {}

QStringList CaptureReplayClient::interfaceNames() const
{
    return {replay_->interfaceName()};
}

std::shared_ptr<platform::WirelessInterface> CaptureReplayClient::interfaceWithName(const QString& name)
{
    return name == replay_->interfaceName() ? replay_ : nullptr;
}

QString CaptureReplayClient::statusText() const
{
    return QStringLiteral("Replaying capture %1").arg(replay_->capturePath());
}

QStringList CaptureReplayClient::toolBackendArguments() const
{
    return {QStringLiteral("--capture"), replay_->capturePath()};
}

} // namespace platform::capture

// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "bench/Peer.h"

#include <hidapi/hidapi.h>

namespace {

constexpr int kPatienceMs = 5000;

struct CloseDevice {
    void operator()(hid_device *device) const { hid_close(device); }
};

class HidapiPeer : public Peer {
public:
    explicit HidapiPeer(hid_device *device)
        : m_device(device)
    {
    }

    bool ask(const QByteArray &report) override
    {
        unsigned char answer[4096]; // as the library's: umockdev carries all of it over
        return hid_write(m_device.get(), reinterpret_cast<const unsigned char *>(report.constData()),
                         size_t(report.size()))
            >= 0
            && hid_read_timeout(m_device.get(), answer, sizeof answer, kPatienceMs) > 0;
    }

private:
    std::unique_ptr<hid_device, CloseDevice> m_device;
};

std::unique_ptr<Peer> openHidapiPeer(const QByteArray &deviceFile)
{
    hid_device *const device = hid_open_path(deviceFile.constData());
    return device ? std::make_unique<HidapiPeer>(device) : nullptr;
}

} // namespace

QList<OtherWay> otherWays()
{
    return {{QStringLiteral("write, poll and read alone"), QString(), openRawPeer},
            {QStringLiteral("hidapi"), QStringLiteral("ratio 0.7"), openHidapiPeer}};
}

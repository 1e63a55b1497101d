#include "foundation/qtx.h"

#include <chrono>
#include <sys/time.h>
#include <thread>

namespace QTx {

unsigned int ticks()
{
    struct timeval now;
    gettimeofday(&now, nullptr);
    return static_cast<unsigned int>(static_cast<unsigned long long>(now.tv_sec) * 1000 +
                                     static_cast<unsigned long long>(now.tv_usec) / 1000);
}

void sleep(unsigned int ms)
{
    std::this_thread::sleep_for(std::chrono::milliseconds(ms));
}

QString friendlyDate(const QDateTime &dateTime)
{
    if (!dateTime.isValid())
        return QStringLiteral("(not available)");
    const QDate date = dateTime.date();
    const QTime time = dateTime.time();
    return QString::asprintf("%02d/%02d/%02d %02d:%02d", date.day(), date.month(), date.year(),
                             time.hour(), time.minute());
}

} // namespace QTx

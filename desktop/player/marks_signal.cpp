#include "desktop/player/marks_signal.h"

#include <QtDBus/QDBusMessage>
#include <utility>

namespace desktop {

namespace {

const auto path = QStringLiteral("/org/virelune/Virelune/Widget");
const auto interface = QStringLiteral("org.virelune.Virelune.Widget1");
const auto member = QStringLiteral("MarksChanged");

}  // namespace

MarksSignal::MarksSignal(const QDBusConnection& bus, std::function<void()> received)
    : received_(std::move(received)) {
  QDBusConnection(bus).connect(QString(), path, interface, member, this, SLOT(marksChanged()));
}

void MarksSignal::send(const QDBusConnection& bus) {
  bus.send(QDBusMessage::createSignal(path, interface, member));
}

}  // namespace desktop

#include "moc_marks_signal.cpp"

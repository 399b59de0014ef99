// velmora_words PROCESS [LEFT TOP WIDTH HEIGHT]
//
// Prints what a program tells assistive technology of its windows, or of the one at this place on
// the screen (a list of thousands in another would take its time), as JSON: for each window or
// control its role, name, description, the text in it, where it is on the screen, whether it shows,
// takes input and is selected, and what lies in it. It asks on the session's bus.

#include <QCoreApplication>
#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cstdio>

namespace {

constexpr int answerLimitMs = 20000;
constexpr int mostChildren = 400; // of a list of thousands the first rows do

// Bits of a state.
constexpr unsigned enabledBit = 8;
constexpr unsigned focusedBit = 12;
constexpr unsigned selectedBit = 23;
constexpr unsigned showingBit = 25;

struct Reference {
    QString bus;
    QDBusObjectPath path;
};

const QDBusArgument &operator>>(const QDBusArgument &in, Reference &to) {
    in.beginStructure();
    in >> to.bus >> to.path;
    in.endStructure();
    return in;
}

class Reader {
public:
    explicit Reader(const QDBusConnection &bus) : bus_(bus) {}

    // The first value of an answer; none where the call fails.
    QVariant call(const Reference &at, const QString &interface, const QString &method,
                  const QVariantList &arguments = {}) {
        QDBusMessage message =
            QDBusMessage::createMethodCall(at.bus, at.path.path(), interface, method);
        message.setArguments(arguments);
        const QDBusMessage answer = bus_.call(message, QDBus::Block, answerLimitMs);
        return answer.type() == QDBusMessage::ReplyMessage ? answer.arguments().value(0)
                                                           : QVariant();
    }

    QVariant accessible(const Reference &at, const QString &method) {
        return call(at, QStringLiteral("org.a11y.atspi.Accessible"), method);
    }

    QString property(const Reference &at, const QString &name) {
        const QVariant found =
            call(at, QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"),
                 {QStringLiteral("org.a11y.atspi.Accessible"), name});
        return found.value<QDBusVariant>().variant().toString();
    }

    QList<Reference> children(const Reference &at) {
        return qdbus_cast<QList<Reference>>(accessible(at, QStringLiteral("GetChildren")));
    }

    QJsonObject describe(const Reference &at) {
        QJsonObject found;
        found["role"] = accessible(at, QStringLiteral("GetRoleName")).toString();
        found["name"] = property(at, QStringLiteral("Name"));
        found["description"] = property(at, QStringLiteral("Description"));
        const QVariant text =
            call(at, QStringLiteral("org.a11y.atspi.Text"), QStringLiteral("GetText"), {0, -1});
        if (text.isValid())
            found["text"] = text.toString();
        found["place"] = place(at);
        const auto states =
            qdbus_cast<QList<unsigned>>(accessible(at, QStringLiteral("GetState"))).value(0);
        const auto has = [states](unsigned bit) { return (states >> bit & 1U) != 0; };
        found["showing"] = has(showingBit);
        found["enabled"] = has(enabledBit);
        found["focused"] = has(focusedBit);
        found["selected"] = has(selectedBit);
        QJsonArray within;
        for (const Reference &child : children(at).mid(0, mostChildren))
            within.append(describe(child));
        found["children"] = within;
        return found;
    }

    QJsonArray place(const Reference &at) {
        const QVariant answer = call(at, QStringLiteral("org.a11y.atspi.Component"),
                                     QStringLiteral("GetExtents"), {0U});
        QJsonArray sides;
        if (!answer.isValid())
            return sides;
        const auto in = answer.value<QDBusArgument>();
        in.beginStructure();
        for (int side = 0; side < 4; ++side) {
            int value = 0;
            in >> value;
            sides.append(value);
        }
        in.endStructure();
        return sides;
    }

private:
    QDBusConnection bus_;
};

// The bus of its own on which programs are asked.
QDBusConnection accessibleBus() {
    Reader session(QDBusConnection::sessionBus());
    const QString address =
        session
            .call({QStringLiteral("org.a11y.Bus"), QDBusObjectPath("/org/a11y/bus")},
                  QStringLiteral("org.a11y.Bus"), QStringLiteral("GetAddress"))
            .toString();
    return QDBusConnection::connectToBus(address, QStringLiteral("accessible"));
}

} // namespace

int main(int count, char **values) {
    const QCoreApplication application(count, values);
    if (count != 2 && count != 6) {
        std::fputs("usage: velmora_words PROCESS [LEFT TOP WIDTH HEIGHT], on the session's bus\n",
                   stderr);
        return 2;
    }
    QJsonArray wanted;
    for (int i = 2; i < count; ++i)
        wanted.append(QString::fromLocal8Bit(values[i]).toInt());
    const unsigned process = QString::fromLocal8Bit(values[1]).toUInt();
    Reader reader(accessibleBus());
    const QDBusObjectPath root("/org/a11y/atspi/accessible/root");
    QJsonArray windows;
    for (const Reference &program :
         reader.children({QStringLiteral("org.a11y.atspi.Registry"), root})) {
        const Reference bus{QStringLiteral("org.freedesktop.DBus"),
                            QDBusObjectPath("/org/freedesktop/DBus")};
        if (reader.call(bus, bus.bus, QStringLiteral("GetConnectionUnixProcessID"), {program.bus})
                .toUInt() != process)
            continue;
        for (const Reference &window : reader.children(program))
            if (wanted.isEmpty() || reader.place(window) == wanted)
                windows.append(reader.describe(window));
    }
    std::fputs(QJsonDocument(windows).toJson(QJsonDocument::Compact).constData(), stdout);
    return 0;
}

#include "ui/Application.h"
#include "support/Fault.h"

#include <QCoreApplication>
#include <QEvent>
#include <QObject>
#include <gtest/gtest.h>

using namespace tarvex;

namespace {

// An object whose event handler raises a fault, as a handler whose statement failed.
class FailingHandler : public QObject {
public:
    bool event(QEvent* e) override {
        if (e->type() == QEvent::User)
            throw BoundsFault("Subscript out of range (20)");
        return QObject::event(e);
    }
};

} // namespace

TEST(Application, AFaultInAHandlerEndsTheOperationWithAnErrorBoxAndTheProgramGoesOn) {
    ASSERT_NE(qobject_cast<Application*>(QCoreApplication::instance()), nullptr);
    QStringList reported;
    Application::SetFaultReporter([&reported](const QString& m) { reported << m; });
    FailingHandler handler;
    QEvent first(QEvent::User);
    EXPECT_FALSE(QCoreApplication::sendEvent(&handler, &first));
    QEvent second(QEvent::User);
    EXPECT_FALSE(QCoreApplication::sendEvent(&handler, &second));
    Application::SetFaultReporter({});
    EXPECT_EQ(reported,
              QStringList({"Subscript out of range (20)", "Subscript out of range (20)"}));
}

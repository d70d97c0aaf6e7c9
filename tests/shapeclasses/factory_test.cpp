// SPDX-License-Identifier: MIT
// The class factory: every stored class name and drawing tool makes its class.
#include "../shapes/testhost.h"

#include <tessal/shapes/shapefactory.h>

#include <gtest/gtest.h>

namespace tessal::test {
namespace {

TEST(ShapeFactory, EveryClassNameMakesThatClass)
{
    TTestHost host;
    ASSERT_EQ(ShapeClassNames().size(), 17);
    for (const QString &name : ShapeClassNames()) {
        const auto shape = CreateShapeOfClass(name, &host);
        ASSERT_NE(shape, nullptr) << name.toStdString();
        EXPECT_EQ(shape->ClassName(), name);
        EXPECT_EQ(QString::fromLatin1(shape->MetaObject()->className()), "tessal::" + name);
    }
    EXPECT_EQ(CreateShapeOfClass("TMyShape", &host), nullptr);
    EXPECT_EQ(CreateShapeOfClass("tmyline", &host), nullptr);
}

} // namespace
} // namespace tessal::test

#include <gtest/gtest.h>

#include <QByteArray>

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", QByteArrayLiteral("offscreen"));
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}

#include <gtest/gtest.h>

#include <ostream>

#include "FrameTestSupport.h"
#include "frame/UtilitiesCommon.h"

using UtilitiesCommon::IsLegalIdentifier;

namespace {

struct IdentifierCase {
    QString Name;
    bool Legal;
};

std::ostream& operator<<(std::ostream& Stream, const IdentifierCase& Case) {
    return Stream << '"' << Case.Name.toStdString() << "\" -> "
                  << (Case.Legal ? "legal" : "illegal");
}

class IsLegalIdentifierJudges : public ::testing::TestWithParam<IdentifierCase> {};

TEST_P(IsLegalIdentifierJudges, TheTrimmedLowerCasedName) {
    EXPECT_EQ(IsLegalIdentifier(GetParam().Name), GetParam().Legal);
}

INSTANTIATE_TEST_SUITE_P(Legal, IsLegalIdentifierJudges,
                         ::testing::Values(IdentifierCase{QStringLiteral("a"), true},
                                           IdentifierCase{QStringLiteral("blink"), true},
                                           IdentifierCase{QStringLiteral("Blink"), true},
                                           IdentifierCase{QStringLiteral("ZZ"), true},
                                           IdentifierCase{QStringLiteral("a1"), true},
                                           IdentifierCase{QStringLiteral("a_b_9"), true},
                                           IdentifierCase{QStringLiteral("a__"), true},
                                           IdentifierCase{QStringLiteral("  main  "), true},
                                           IdentifierCase{QStringLiteral(" x"), true},
                                           IdentifierCase{QStringLiteral("x "), true}));

INSTANTIATE_TEST_SUITE_P(Illegal, IsLegalIdentifierJudges,
                         ::testing::Values(IdentifierCase{QString(), false},
                                           IdentifierCase{QStringLiteral("   "), false},
                                           IdentifierCase{QStringLiteral("1a"), false},
                                           IdentifierCase{QStringLiteral("_a"), false},
                                           IdentifierCase{QStringLiteral("a b"), false},
                                           IdentifierCase{QStringLiteral("a-b"), false},
                                           IdentifierCase{QStringLiteral("a.b"), false},
                                           IdentifierCase{QStringLiteral("a$"), false},
                                           IdentifierCase{QStringLiteral("\ta"), false},
                                           IdentifierCase{QStringLiteral("a\t"), false},
                                           IdentifierCase{QStringLiteral("\"a\""), false}));

INSTANTIATE_TEST_SUITE_P(
    NonAscii, IsLegalIdentifierJudges,
    ::testing::Values(IdentifierCase{QString(QChar(0x00E9)), false},               // e acute
                      IdentifierCase{QStringLiteral("a") + QChar(0x00E9), false},  // a, e acute
                      IdentifierCase{QStringLiteral("a") + QChar(0x00B2),
                                     false},                          // superscript two
                      IdentifierCase{QString(QChar(0x212A)), false},  // Kelvin sign, lowers to k
                      IdentifierCase{QString(QChar(0x0130)), false},  // capital I with dot
                      IdentifierCase{QStringLiteral("a") + QChar(0x0661), false}));  // Arabic one

TEST(CopyrightSign, IsTheSingleCharacterWithCode169) {
    const QString Sign = UtilitiesCommon::CopyrightSign();
    ASSERT_EQ(Sign.size(), 1);
    EXPECT_EQ(Sign[0].unicode(), 169);
    EXPECT_EQ(Sign.toUtf8(), QByteArray("\xC2\xA9"));
}

}  // namespace

#include "PlixTolvarixPasswordValidator.h"
#include "PlixTestDataSet.h"

using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStdout;

namespace {

struct PasswordPolicy
{
    bool emptyAllowed = false;
    std::string access2 = "second";
    std::string access1 = "first";
    std::string forcedWrite = "forced";
    bool forcedWriteEnabled = false;
};

// The members in the order the validator reads them; leftOut is not added.
void addMembers(PlixTestDataSet& dataSet, const PasswordPolicy& policy,
                const std::string& leftOut = "")
{
    const std::pair<const char*, PlixVariant> members[] = {
        {"emptypasswords", PlixVariant(policy.emptyAllowed)},
        {"accesscontrolPassword2", passwordFrom(policy.access2)},
        {"accesscontrolPassword1", passwordFrom(policy.access1)},
        {"forcedwriteaccessPassword", passwordFrom(policy.forcedWrite)},
        {"enablePassword", PlixVariant(policy.forcedWriteEnabled)},
    };
    for (const auto& member : members) {
        if (member.first != leftOut) {
            dataSet.add(member.first, member.second);
        }
    }
}

unsigned validatePolicy(const PasswordPolicy& policy)
{
    PlixTestDataSet dataSet;
    addMembers(dataSet, policy);
    return PlixTolvarixPasswordValidator(dataSet.get()).validate();
}

void expectFatalWithoutMember(const std::string& member, const std::string& line)
{
    PlixTestDataSet dataSet;
    addMembers(dataSet, PasswordPolicy(), member);
    PlixTolvarixPasswordValidator validator(dataSet.get());
    EXPECT_EXIT((sendStdoutToStderr(), validator.validate()), testing::ExitedWithCode(16),
                testing::Eq(line));
}

} // namespace

TEST(PlixTolvarixPasswordValidator, EmptyForcedWritePasswordIsValidWhileItIsDisabled)
{
    PasswordPolicy policy;
    policy.forcedWrite = "";
    EXPECT_EQ(validatePolicy(policy), 0u);
}

TEST(PlixTolvarixPasswordValidator, EmptySecondAccessPasswordGives206WithoutALogLine)
{
    PasswordPolicy policy;
    policy.access2 = "";
    CaptureStdout();
    EXPECT_EQ(validatePolicy(policy), 206u);
    EXPECT_EQ(GetCapturedStdout(), "");
}

TEST(PlixTolvarixPasswordValidator, EmptyFirstAccessPasswordGives206)
{
    PasswordPolicy policy;
    policy.access1 = "";
    EXPECT_EQ(validatePolicy(policy), 206u);
}

TEST(PlixTolvarixPasswordValidator, EnabledEmptyForcedWritePasswordGives206)
{
    PasswordPolicy policy;
    policy.forcedWrite = "";
    policy.forcedWriteEnabled = true;
    EXPECT_EQ(validatePolicy(policy), 206u);
}

TEST(PlixTolvarixPasswordValidator, AllPasswordsSetAndEnabledIsValid)
{
    PasswordPolicy policy;
    policy.forcedWriteEnabled = true;
    EXPECT_EQ(validatePolicy(policy), 0u);
}

TEST(PlixTolvarixPasswordValidator, EmptyPasswordsAllowedAcceptsAllThreeEmptyAndEnabled)
{
    PasswordPolicy policy;
    policy.emptyAllowed = true;
    policy.access1 = "";
    policy.access2 = "";
    policy.forcedWrite = "";
    policy.forcedWriteEnabled = true;
    EXPECT_EQ(validatePolicy(policy), 0u);
}

TEST(PlixTolvarixPasswordValidatorDeathTest, MissingEmptyPasswordsEndsTheProcessWith16)
{
    expectFatalWithoutMember("emptypasswords",
                             "[ERR] Critical exception in PlixTolvarixPasswordValidator::validate "
                             "emptypasswords Read: map::at\n");
}

TEST(PlixTolvarixPasswordValidatorDeathTest, MissingSecondAccessPasswordReportsTheFirstOnesLine)
{
    expectFatalWithoutMember("accesscontrolPassword2",
                             "[ERR] Critical exception in PlixTolvarixPasswordValidator::validate "
                             "accesscontrolPassword1 Read: map::at\n");
}

TEST(PlixTolvarixPasswordValidatorDeathTest, MissingFirstAccessPasswordEndsTheProcessWith16)
{
    expectFatalWithoutMember("accesscontrolPassword1",
                             "[ERR] Critical exception in PlixTolvarixPasswordValidator::validate "
                             "accesscontrolPassword1 Read: map::at\n");
}

TEST(PlixTolvarixPasswordValidatorDeathTest, MissingForcedWritePasswordEndsTheProcessWith16)
{
    expectFatalWithoutMember("forcedwriteaccessPassword",
                             "[ERR] Critical exception in PlixTolvarixPasswordValidator::validate "
                             "forcedwriteaccessPassword Read: map::at\n");
}

TEST(PlixTolvarixPasswordValidatorDeathTest, MissingEnablePasswordReportsItInLowerCase)
{
    expectFatalWithoutMember("enablePassword",
                             "[ERR] Critical exception in PlixTolvarixPasswordValidator::validate "
                             "enablepassword Read: map::at\n");
}

#pragma once

#include <QString>

namespace vellmora::test {

/// Until its end the process is a user whom permissions bind, also where the tests are run by root. The
/// folder and all in it become that user's.
class OrdinaryUser {
public:
    explicit OrdinaryUser(const QString& folder);
    ~OrdinaryUser();
    OrdinaryUser(const OrdinaryUser&) = delete;
    OrdinaryUser& operator=(const OrdinaryUser&) = delete;

private:
    bool m_wasRoot;
};

}  // namespace vellmora::test

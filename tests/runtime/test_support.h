// Helpers shared by the tests of the runtime, values, output and input layers.
#ifndef KDBIND_TESTS_RUNTIME_TEST_SUPPORT_H
#define KDBIND_TESTS_RUNTIME_TEST_SUPPORT_H

#include <clocale>
#include <string>

#include <gtest/gtest.h>

#include <kdbind/values.h>

namespace KdBindTest {

// The message of the failure of type Failure that action raises, or a marker
// when it raises none. Any other exception escapes and fails the test.
template <class Failure = KdBind::CKdException, class Action>
std::string FailureOf(Action&& action)
{
    try {
        action();
    } catch (Failure const& failure) {
        return failure.GetMessage();
    }
    return "<no failure>";
}

inline std::string Bytes(KdBind::CBinaryData const& data)
{
    return data.GetData() ? std::string(reinterpret_cast<char const*>(data.GetData()), data.GetLength())
                          : std::string();
}

// Switches the process's locale for one scope.
class LocaleScope {
public:
    explicit LocaleScope(char const* name)
        : m_previous(setlocale(LC_ALL, nullptr)), m_available(setlocale(LC_ALL, name) != nullptr)
    {
    }
    ~LocaleScope() { setlocale(LC_ALL, m_previous.c_str()); }
    bool Available() const { return m_available; }

private:
    std::string m_previous;
    bool m_available;
};

} // namespace KdBindTest

#endif

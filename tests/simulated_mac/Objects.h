#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <atomic>
#include <cstdint>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

namespace corvane::simulated {

/// A rule of Apple's interfaces was broken: a Mac would have crashed or leaked. In a test that does
/// not expect it this ends the program.
struct Misuse : std::logic_error {
    using std::logic_error::logic_error;
};

/// Everything that is handed out has one of these underneath: a reference count that starts at one
/// and ends the object at zero. Objects made during a test are counted; see `Accounts`.
class Object {
public:
    enum class Lifetime { counted, immortal };

    explicit Object(CFTypeID type, Lifetime lifetime = Lifetime::counted);
    virtual ~Object();
    Object(const Object &) = delete;
    Object &operator=(const Object &) = delete;

    void retain();
    void release();
    CFTypeID type() const { return m_type; }
    int references() const { return m_references; }

    /// The object behind a reference; throws `Misuse` for null and for what is no object any more.
    static Object &from(CFTypeRef reference);

private:
    std::uint64_t m_mark; ///< Distinguishes a live object from freed memory.
    CFTypeID m_type;
    Lifetime m_lifetime;
    std::atomic<int> m_references = 1;
};

/// The object behind a reference, which must be of this class.
template <typename Class>
Class &objectAs(CFTypeRef reference)
{
    auto *object = dynamic_cast<Class *>(&Object::from(reference));
    if (!object)
        throw Misuse("an object of another class was handed in");
    return *object;
}

/// The reference under which clients know an object.
template <typename Reference>
Reference referenceTo(const Object *object)
{
    return reinterpret_cast<Reference>(const_cast<Object *>(object));
}

enum : CFTypeID {
    stringType = 7,
    dictionaryType = 18,
    arrayType = 19,
    dataType = 20,
    numberType = 22,
    subscriptionType = 60,
    hidClientType = 70,
    hidServiceType,
    hidEventType
};

class String : public Object {
public:
    explicit String(std::string text, Lifetime lifetime = Lifetime::counted)
        : Object(stringType, lifetime),
          text(std::move(text))
    {
    }
    const std::string text;
};

class Data : public Object {
public:
    explicit Data(std::vector<std::uint8_t> bytes) : Object(dataType), bytes(std::move(bytes)) { }
    const std::vector<std::uint8_t> bytes;
};

class Number : public Object {
public:
    explicit Number(std::int64_t value) : Object(numberType), value(value) { }
    const std::int64_t value;
};

/// Holds a reference to each of its elements.
class Array : public Object {
public:
    explicit Array(std::vector<Object *> elements);
    ~Array() override;
    const std::vector<Object *> elements;
};

/// Holds a reference to each of its values; keys are kept as text.
class Dictionary : public Object {
public:
    explicit Dictionary(std::map<std::string, Object *> values = {});
    ~Dictionary() override;
    const std::map<std::string, Object *> values;
};

/// What is out at this moment. A client that gives everything back leaves it as it was.
struct Accounts {
    long objects = 0;    ///< Counted objects that exist.
    long references = 0; ///< Their reference counts together.
    long subscriptions = 0;
    long registryEntries = 0;
    long memoryBlocks = 0; ///< Blocks of memory that the kernel handed out.
    long hostRights = 0;   ///< Send rights to the host port.

    friend bool operator==(const Accounts &, const Accounts &) = default;
};

Accounts accounts();

/// The part that grows and shrinks under `accounts`; used by the simulated functions.
struct Ledger {
    std::atomic<long> objects = 0;
    std::atomic<long> references = 0;
    std::atomic<long> subscriptions = 0;
    std::atomic<long> registryEntries = 0;
    std::atomic<long> memoryBlocks = 0;
    std::atomic<long> hostRights = 0;
};

Ledger &ledger();

} // namespace corvane::simulated

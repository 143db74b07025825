#include "simulated_mac/Objects.h"

namespace corvane::simulated {

namespace {

constexpr std::uint64_t liveMark = 0x6c69766520646f67;

} // namespace

Object::Object(CFTypeID type, Lifetime lifetime)
    : m_mark(liveMark),
      m_type(type),
      m_lifetime(lifetime)
{
    if (m_lifetime == Lifetime::immortal)
        return;
    ++ledger().objects;
    ++ledger().references;
}

Object::~Object()
{
    m_mark = 0;
    if (m_lifetime == Lifetime::immortal)
        return;
    --ledger().objects;
    ledger().references -= m_references;
}

void Object::retain()
{
    if (m_lifetime == Lifetime::immortal)
        return;
    ++m_references;
    ++ledger().references;
}

void Object::release()
{
    if (m_lifetime == Lifetime::immortal)
        return;
    --ledger().references;
    if (--m_references == 0)
        delete this;
}

Object &Object::from(CFTypeRef reference)
{
    auto *object = static_cast<Object *>(const_cast<void *>(reference));
    if (!object)
        throw Misuse("null was handed in where an object must be");
    if (object->m_mark != liveMark)
        throw Misuse("an object was used after its last release");
    return *object;
}

Array::Array(std::vector<Object *> elements) : Object(arrayType), elements(std::move(elements))
{
    for (Object *element : this->elements)
        element->retain();
}

Array::~Array()
{
    for (Object *element : elements)
        element->release();
}

Dictionary::Dictionary(std::map<std::string, Object *> values)
    : Object(dictionaryType),
      values(std::move(values))
{
    for (const auto &[key, value] : this->values)
        value->retain();
}

Dictionary::~Dictionary()
{
    for (const auto &[key, value] : values)
        value->release();
}

Accounts accounts()
{
    const Ledger &open = ledger();
    return {.objects = open.objects,
            .references = open.references,
            .subscriptions = open.subscriptions,
            .registryEntries = open.registryEntries,
            .memoryBlocks = open.memoryBlocks,
            .hostRights = open.hostRights};
}

Ledger &ledger()
{
    static Ledger open;
    return open;
}

} // namespace corvane::simulated

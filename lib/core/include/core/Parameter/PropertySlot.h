// Access to one property of an object through three of its member functions.
#pragma once

#include <memory>
#include <type_traits>
#include <utility>
#include <variant>

template <typename T>
class PropertySlotBase {
public:
    virtual ~PropertySlotBase() = default;
    virtual T get() const = 0;
    virtual void set(const T& value) = 0;
    virtual void init(const T& value) = 0;
    virtual std::unique_ptr<PropertySlotBase> clone() const = 0;
};

// The object is not owned. Member functions may be virtual, and may take or return T by value or by const
// reference; a getter need not be const (a read-and-clear latch is none).
//
//   PropertySlot(this, &Unit::getLevel, &Unit::setLevel, &Unit::initLevel)
template <typename T, typename C>
class PropertySlot final : public PropertySlotBase<T> {
public:
    using Getter = std::variant<T (C::*)() const, T (C::*)(), const T& (C::*)() const>;
    using Setter = std::variant<void (C::*)(T), void (C::*)(const T&)>;

    PropertySlot(C* object, Getter getter, Setter setter, Setter initter)
        : object_(object), getter_(getter), setter_(setter), initter_(initter) {}

    T get() const override {
        return std::visit([this](auto function) { return T((object_->*function)()); }, getter_);
    }
    void set(const T& value) override { call(setter_, value); }
    void init(const T& value) override { call(initter_, value); }
    std::unique_ptr<PropertySlotBase<T>> clone() const override {
        return std::make_unique<PropertySlot>(*this);
    }

private:
    void call(const Setter& setter, const T& value) {
        std::visit([&](auto function) { (object_->*function)(value); }, setter);
    }

    C* object_;
    Getter getter_;
    Setter setter_;
    Setter initter_;
};

template <typename C, typename G, typename S, typename I>
PropertySlot(C*, G, S, I) -> PropertySlot<std::decay_t<std::invoke_result_t<G, C&>>, C>;

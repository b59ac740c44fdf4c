// One connection end on a control.
#pragma once

template <typename T>
class Slot {
public:
    virtual ~Slot() = default;
    virtual void call(const T& value) = 0;
    virtual bool equals(const Slot& other) const = 0;
};

// Calls one member function of a target that it does not own.
template <typename T, typename Target>
class SlotConnector final : public Slot<T> {
public:
    using Function = void (Target::*)(const T&);

    SlotConnector(Target* target, Function function) : target_(target), function_(function) {}

    void call(const T& value) override { (target_->*function_)(value); }

    // Same class, same target, same function.
    bool equals(const Slot<T>& other) const override {
        const auto* connector = dynamic_cast<const SlotConnector*>(&other);
        return connector && target_ == connector->target_ && function_ == connector->function_;
    }

private:
    Target* target_;
    Function function_;
};

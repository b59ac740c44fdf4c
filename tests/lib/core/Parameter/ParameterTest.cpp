#include <gtest/gtest.h>

#include "Owner.h"
#include "core/Parameter/Parameter.h"
#include "support/LogRecorder.h"

namespace {

using Floats = std::vector<float>;
using Strings = std::vector<std::string>;

TEST(Parameter, TypeIsThatOfItsValue) {
    EXPECT_EQ(Owner<float>().parameter.getType(), typeid(float));
    EXPECT_EQ(Owner<int>().parameter.getType(), typeid(int));
    EXPECT_EQ(Owner<bool>().parameter.getType(), typeid(bool));
    EXPECT_EQ(Owner<std::string>().parameter.getType(), typeid(std::string));
    EXPECT_EQ(Owner<int>("drive").parameter.getName(), "drive");
}

TEST(Parameter, SetRunsTheOwnersSetterAndInitItsInitter) {
    LogRecorder log;
    Owner<float> owner;
    owner.parameter.set(0.25f);
    EXPECT_EQ(owner.parameter.get(), 0.25f);
    owner.parameter.init(0.5f);
    EXPECT_EQ(owner.parameter.get(), 0.5f);
    EXPECT_EQ(owner.calls, (Strings{"set", "init"}));
    EXPECT_EQ(log.lines(), (Strings{"Parameter: In Parameter::set", "Parameter: In Parameter::init"}));
}

TEST(Parameter, ASetterIsReachedThroughItsOverride) {
    struct Derived : Owner<int> {
        void set(const int& v) override { value = v + 100; }
    } owner;
    owner.parameter.set(1);
    EXPECT_EQ(owner.value, 101);
}

TEST(Parameter, MemberFunctionsMayTakeValuesAndGettersMayChangeTheOwner) {
    struct Latch {
        bool readAndClear() { return std::exchange(flag, false); }
        void set(bool value) { flag = value; }
        void init(bool value) { flag = value; }
        bool flag = true;
    } latch;
    Parameter<bool> parameter("latch", PropertySlot(&latch, &Latch::readAndClear, &Latch::set, &Latch::init));
    EXPECT_TRUE(parameter.get());
    EXPECT_FALSE(parameter.get());
}

TEST(Parameter, ANewObserverIsCalledOnceWithTheCurrentValue) {
    Owner<float> owner;
    owner.value = 0.75f;
    RecordingObserver<float> observer;
    owner.parameter.addObserver(&observer);
    EXPECT_EQ(observer.seen, Floats{0.75f});
}

TEST(Parameter, SetTellsObserversInOrderAndInitTellsNobodyUntilNotify) {
    Owner<float> owner;
    RecordingObserver<float> observer;
    owner.parameter.addObserver(&observer);
    owner.parameter.set(1.0f);
    EXPECT_EQ(observer.seen, (Floats{0.0f, 1.0f}));
    owner.parameter.init(2.0f);
    EXPECT_EQ(observer.seen, (Floats{0.0f, 1.0f}));
    std::set<IParameter*> visited;
    owner.parameter.notify(visited);
    EXPECT_EQ(observer.seen, (Floats{0.0f, 1.0f, 2.0f}));
    EXPECT_EQ(visited, std::set<IParameter*>{&owner.parameter});
}

TEST(Parameter, TheValueIsReadAnewForEachObserver) {
    struct Counter {
        int next() { return ++count; }
        void set(const int&) {}
        int count = 0;
    } counter;
    Parameter<int> parameter("counter", PropertySlot(&counter, &Counter::next, &Counter::set, &Counter::set));
    RecordingObserver<int> first, second;
    parameter.addObserver(&first);
    parameter.addObserver(&second);
    parameter.notify();
    EXPECT_EQ(first.seen, (std::vector<int>{1, 3}));
    EXPECT_EQ(second.seen, (std::vector<int>{2, 4}));
}

TEST(Parameter, ACycleOfTwoTellsEachObserverOfEachParameterExactlyOnce) {
    Owner<float> a("a"), b("b");
    a.parameter.addLinkedParameter(&b.parameter);
    b.parameter.addLinkedParameter(&a.parameter);
    RecordingObserver<float> a1, a2, b1, b2;
    a.parameter.addObserver(&a1);
    a.parameter.addObserver(&a2);
    b.parameter.addObserver(&b1);
    b.parameter.addObserver(&b2);
    a.parameter.set(3.0f);
    for (const auto* observer : {&a1, &a2})
        EXPECT_EQ(observer->seen, (Floats{0.0f, 3.0f}));
    // A link carries the news and not the value.
    for (const auto* observer : {&b1, &b2})
        EXPECT_EQ(observer->seen, (Floats{0.0f, 0.0f}));
}

TEST(Parameter, ARemovedLinkIsSilent) {
    Owner<float> a, b;
    RecordingObserver<float> observer;
    b.parameter.addObserver(&observer);
    a.parameter.addLinkedParameter(&b.parameter);
    a.parameter.addLinkedParameter(&b.parameter);
    a.parameter.removeLinkedParameter(&b.parameter);
    a.parameter.set(1.0f);
    EXPECT_EQ(observer.seen.size(), 1u);
}

TEST(Parameter, ALinkToAnotherTypeIsAnErrorAndNoLink) {
    LogRecorder log;
    Owner<float> number;
    Owner<bool> flag;
    RecordingObserver<bool> observer;
    flag.parameter.addObserver(&observer);
    number.parameter.addLinkedParameter(&flag.parameter);
    number.parameter.addLinkedParameter(nullptr);
    number.parameter.removeLinkedParameter(&flag.parameter);
    EXPECT_EQ(log.count("Error type mismatch"), 3);
    number.parameter.set(1.0f);
    EXPECT_EQ(observer.seen.size(), 1u);
}

TEST(Parameter, AnObserverOfAnotherTypeThrows) {
    Owner<float> owner;
    RecordingObserver<int> wrong;
    const auto messageOf = [&](IObserver* observer) -> std::string {
        try {
            owner.parameter.addObserver(observer);
        } catch (const std::runtime_error& error) {
            return error.what();
        }
        return "";
    };
    EXPECT_EQ(messageOf(&wrong), "Bad observer type");
    EXPECT_EQ(messageOf(nullptr), "Bad observer type");
    EXPECT_TRUE(wrong.seen.empty());
}

TEST(Parameter, RemovingAnObserverThatIsNotThereChangesAndLogsNothing) {
    Owner<float> owner;
    RecordingObserver<float> present, absent;
    owner.parameter.addObserver(&present);
    LogRecorder log;
    owner.parameter.removeObserver(&absent);
    EXPECT_TRUE(log.lines().empty());
    owner.parameter.notify();
    EXPECT_EQ(present.seen.size(), 2u);
}

TEST(Parameter, RemoveTakesEveryEntryOfAnObserver) {
    Owner<float> owner;
    RecordingObserver<float> observer;
    owner.parameter.addObserver(&observer);
    owner.parameter.addObserver(&observer);
    owner.parameter.removeObserver(&observer);
    owner.parameter.notify();
    EXPECT_EQ(observer.seen.size(), 2u);
}

TEST(Parameter, RemovingAnObserverOfAnotherTypeIsAnErrorLine) {
    LogRecorder log;
    Owner<float> owner;
    RecordingObserver<int> wrong;
    owner.parameter.removeObserver(&wrong);
    owner.parameter.removeObserver(nullptr);
    EXPECT_EQ(log.lines(), (Strings{"Error Bad observer type", "Error Bad observer type"}));
}

TEST(Parameter, AnOwnedObserverGoesWithTheParameterAndNotWithItsRemoval) {
    bool deleted = false;
    {
        Owner<float> owner;
        auto* observer = new RecordingObserver<float>;
        observer->deleted = &deleted;
        owner.parameter.addOwnedObserver(observer);
        EXPECT_EQ(observer->seen, Floats{0.0f});
        owner.parameter.removeObserver(observer);
        EXPECT_FALSE(deleted);
    }
    EXPECT_TRUE(deleted);
}

}  // namespace

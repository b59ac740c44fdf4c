#include <gtest/gtest.h>
#include <memory>

#include "Owner.h"
#include "core/Parameter/Control.h"
#include "support/LogRecorder.h"

namespace {

TEST(Control, AValueReachesEveryConnectedParameterAndItsObservers) {
    Owner<float> a, b;
    RecordingObserver<float> observer;
    b.parameter.addObserver(&observer);
    SendingControl<float> control;
    a.parameter.connectControl(&control);
    b.parameter.connectControl(&control);
    control.send(0.5f);
    EXPECT_EQ(a.value, 0.5f);
    EXPECT_EQ(b.value, 0.5f);
    EXPECT_EQ(observer.seen, (std::vector<float>{0.0f, 0.5f}));
}

TEST(Control, TakesTheValueOverWhenItIsConnected) {
    Owner<std::string> owner;
    owner.value = "there";
    SendingControl<std::string> control;
    owner.parameter.connectControl(&control);
    EXPECT_EQ(control.connectedWith, "there");
}

TEST(Control, ConnectionsAreLoggedWithTheirNumber) {
    Owner<int> owner;
    SendingControl<int> control;
    LogRecorder log;
    owner.parameter.connectControl(&control);
    owner.parameter.connectControl(&control);
    owner.parameter.disconnectControl(&control);
    ASSERT_EQ(log.lines().size(), 3u);
    EXPECT_EQ(log.lines()[0].rfind("Signal: slot 0x", 0), 0u);
    const char* endings[] = {" has 1 clients", " has 2 clients", " has 0 clients"};
    for (std::size_t i = 0; i < 3; ++i)
        EXPECT_TRUE(log.lines()[i].ends_with(endings[i])) << log.lines()[i];
}

TEST(Control, OfAnotherTypeThrowsOnConnectAndIsIgnoredOnDisconnect) {
    Owner<float> owner;
    SendingControl<int> control;
    LogRecorder log;
    for (IControl* wrong : {static_cast<IControl*>(&control), static_cast<IControl*>(nullptr)}) {
        try {
            owner.parameter.connectControl(wrong);
            ADD_FAILURE() << "no exception";
        } catch (const std::runtime_error& error) {
            EXPECT_STREQ(error.what(), "Bad control type");
        }
        owner.parameter.disconnectControl(wrong);
    }
    EXPECT_TRUE(log.lines().empty());
    EXPECT_EQ(control.getNumSlots(), 0);
}

TEST(Control, DisconnectingOneParameterKeepsTheOthers) {
    Owner<float> a, b;
    SendingControl<float> control;
    a.parameter.connectControl(&control);
    b.parameter.connectControl(&control);
    a.parameter.disconnectControl(&control);
    control.send(1.0f);
    EXPECT_EQ(a.value, 0.0f);
    EXPECT_EQ(b.value, 1.0f);
}

TEST(Control, MayGoWhileItIsConnected) {
    Owner<float> owner;
    {
        SendingControl<float> control;
        owner.parameter.connectControl(&control);
    }
    owner.parameter.set(1.0f);
    EXPECT_EQ(owner.value, 1.0f);
}

TEST(Control, ThatAlsoObservesHearsItsOwnChangeOnceAndDoesNotSendAgain) {
    struct Knob : Control<float>, Observer<float> {
        const std::type_info& getType() const override { return typeid(float); }
        void update(const float& value) override { heard.push_back(value); }
        using Control<float>::send;
        std::vector<float> heard;
    } knob;
    Owner<float> owner;
    owner.parameter.connectControl(&knob);
    owner.parameter.addObserver(&knob);
    knob.send(0.5f);
    EXPECT_EQ(knob.heard, (std::vector<float>{0.0f, 0.5f}));
    EXPECT_EQ(owner.calls.size(), 1u);
}

TEST(SlotConnector, EqualsOnlyTheSameTargetAndFunction) {
    Owner<float> a, b;
    using Connector = SlotConnector<float, Parameter<float>>;
    const Connector connector(&a.parameter, &Parameter<float>::set);
    EXPECT_TRUE(connector.equals(Connector(&a.parameter, &Parameter<float>::set)));
    EXPECT_FALSE(connector.equals(Connector(&b.parameter, &Parameter<float>::set)));
    EXPECT_FALSE(connector.equals(Connector(&a.parameter, &Parameter<float>::init)));
    struct Other : Slot<float> {
        void call(const float&) override {}
        bool equals(const Slot<float>&) const override { return false; }
    } other;
    EXPECT_FALSE(connector.equals(other));
}

}  // namespace

#include "core/Forms.h"

#include "support/FakeForm.h"
#include "support/PrintText.h"

#include <gtest/gtest.h>
#include <memory>
#include <vector>

namespace {

class FormRegistry : public ::testing::Test {
protected:
    FormRegistry() {
        for (const char* name : {"wMain", "wPolling", "wHistoric"}) {
            Forms::Register(Text(name), [this, name] {
                made.push_back(std::make_unique<FakeForm>(Text(name), log));
                return made.back().get();
            });
        }
    }
    ~FormRegistry() override {
        for (const auto& form : made)
            Forms::Removed(form.get());
        for (const char* name : {"wMain", "wPolling", "wHistoric"})
            Forms::Register(Text(name), {});
    }
    static FakeForm* Load(const char* name) {
        return static_cast<FakeForm*>(Forms::Load(Text(name)));
    }
    static int Instances(const char* name) { return NbInstances(Text(name)); }

    QStringList log;
    std::vector<std::unique_ptr<FakeForm>> made;
};

TEST_F(FormRegistry, MakesAFormOnceUntilItIsUnloaded) {
    EXPECT_EQ(Forms::Find(Text("wMain")), nullptr);
    Forms::BringToFront(Text("wMain"));
    Forms::Unload(Text("wMain"));
    EXPECT_TRUE(made.empty());
    FakeForm* form = Load("wMain");
    EXPECT_EQ(Load("wMain"), form);
    EXPECT_FALSE(Forms::AnyVisible());
    Forms::Show(Text("wMain"));
    EXPECT_TRUE(Forms::AnyVisible());
    Forms::BringToFront(Text("wMain"));
    EXPECT_EQ(log, TextList({"show wMain", "front wMain"}));
    EXPECT_EQ(Instances("wMain"), 1);
    EXPECT_EQ(Instances("wmain"), 0);
    Forms::Unload(Text("wMain"));
    EXPECT_EQ(Instances("wMain"), 0);
    EXPECT_NE(Load("wMain"), form);
    EXPECT_EQ(Load("wUnknown"), nullptr);
    Forms::Show(Text("wUnknown"));
}

TEST_F(FormRegistry, UnloadAllButTakesFormsThatAnUnloadOpensOrTakesAlong) {
    Load("wMain");
    Load("wPolling")->atUnload = [] { Load("wHistoric"); };
    Forms::UnloadAllBut({Text("wMain")});
    EXPECT_EQ(Instances("wMain"), 1);
    EXPECT_EQ(Instances("wPolling") + Instances("wHistoric"), 0) << "opened meanwhile";
    Load("wPolling")->atUnload = [] { Forms::Unload(Text("wHistoric")); };
    Load("wHistoric");
    log.clear();
    Forms::UnloadAllBut({});
    EXPECT_EQ(log, TextList({"unload wMain", "unload wHistoric", "unload wPolling"}));
}

TEST_F(FormRegistry, UnloadAllButEndsWithAFormThatComesBack) {
    std::function<void()> again = [&] { Load("wPolling")->atUnload = again; };
    FakeForm* form = Load("wPolling");
    form->atUnload = [&, form] {
        Forms::Removed(form);
        again();
    };
    Forms::UnloadAllBut({});
    EXPECT_LE(Instances("wPolling"), 1);
}

} // namespace

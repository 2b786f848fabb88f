#include "core/Forms.h"

#include "support/FakeForm.h"
#include "support/PrintText.h"

#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <vector>

namespace {

class TestForm : public FakeForm {
public:
    using FakeForm::FakeForm;
    void Unload() override {
        if (atUnload)
            atUnload();
        FakeForm::Unload();
    }

    std::function<void()> atUnload;
};

class FormRegistry : public ::testing::Test {
protected:
    FormRegistry() {
        for (const char* name : {"wMain", "wPolling", "wHistoric"}) {
            Forms::Register(Text(name), [this, name] {
                made.push_back(std::make_unique<TestForm>(Text(name), log));
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
    static TestForm* Load(const char* name) {
        return static_cast<TestForm*>(Forms::Load(Text(name)));
    }
    static int Instances(const char* name) { return NbInstances(Text(name)); }

    QStringList log;
    std::vector<std::unique_ptr<TestForm>> made;
};

TEST_F(FormRegistry, MakesAFormOnceUntilItIsUnloaded) {
    EXPECT_EQ(Forms::Find(Text("wMain")), nullptr);
    Forms::BringToFront(Text("wMain"));
    Forms::Unload(Text("wMain"));
    EXPECT_TRUE(made.empty());
    TestForm* form = Load("wMain");
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

TEST_F(FormRegistry, UnloadAllButTakesFormsThatAnUnloadOpens) {
    Load("wMain");
    Load("wPolling")->atUnload = [] { Load("wHistoric"); };
    Forms::UnloadAllBut({Text("wMain")});
    EXPECT_EQ(Instances("wMain"), 1);
    EXPECT_EQ(Instances("wPolling"), 0);
    EXPECT_EQ(Instances("wHistoric"), 0);
}

TEST_F(FormRegistry, UnloadAllButPassesFormsThatAnUnloadTakesAlong) {
    TestForm* first = Load("wPolling");
    int unloads = 0;
    Load("wHistoric")->atUnload = [&] { ++unloads; };
    first->atUnload = [] { Forms::Unload(Text("wHistoric")); };
    Forms::UnloadAllBut({});
    EXPECT_EQ(unloads, 1);
    EXPECT_EQ(Instances("wPolling") + Instances("wHistoric"), 0);
}

TEST_F(FormRegistry, UnloadAllButEndsWithAFormThatComesBack) {
    std::function<void()> again = [&] { Load("wPolling")->atUnload = again; };
    TestForm* form = Load("wPolling");
    form->atUnload = [&, form] {
        Forms::Removed(form);
        again();
    };
    Forms::UnloadAllBut({});
    EXPECT_LE(Instances("wPolling"), 1);
}

} // namespace

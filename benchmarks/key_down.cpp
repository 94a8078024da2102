// What one key press costs the abbreviation monitor, in a library of 1,000 and of 100,000 abbreviations and
// behind 1,000,000 buffered characters. Within-word expansion is on and nothing matches, so that every
// press looks up the buffer and its 29 tails.

#include "app/settings/settings_controller.h"
#include "app/settings/sound_manager.h"
#include "engine/abbreviations_monitor.h"
#include "engine/accessibility_manager.h"
#include "engine/expansion_undo.h"
#include "engine/paste/macro_preparation.h"
#include "engine/paste/paste_controller.h"
#include "fakes/fake_alerts.h"
#include "fakes/fake_audio_player.h"
#include "fakes/fake_background_queue.h"
#include "fakes/fake_desktop.h"
#include "fakes/fake_environment.h"
#include "fakes/fake_fill_in_prompt.h"
#include "fakes/fake_own_application.h"
#include "fakes/fake_user_defaults.h"
#include "fakes/fake_user_notifications.h"
#include "figures.h"
#include "macros/ql_snippet_macro_interpreter.h"
#include "store/context/managed_object_context.h"
#include "store/persistence_controller.h"
#include "store/records/ql_snippet.h"

#include <chrono>
#include <random>
#include <string>
#include <vector>

namespace quorlo {
namespace {

constexpr int kPresses = 200'000;

class Typist {
 public:
  explicit Typist(int abbreviations) {
    std::mt19937 random(7);
    for (int i = 0; i < abbreviations; ++i) {
      auto snippet = context_.insert<QLSnippet>();
      snippet->setText(AttributedString(u"snippet"));
      // Upper case, so that lower-case typing never completes one.
      std::u16string abbreviation;
      const auto length = 2 + random() % 29;
      while (abbreviation.size() < length) abbreviation += static_cast<char16_t>(u'A' + random() % 26);
      snippet->setAbbreviation(abbreviation);
    }
    settings_.setAccessibilityCheck([] { return true; });
    settings_.setAbbreviationsTriggerType(AbbreviationTriggerType::lastSymbol);
    settings_.setAbbreviationsEnabled(true);
    desktop_.queue.settle();
  }

  void fillBuffer(int characters) {
    for (int i = 0; i < characters; ++i) press(i);
  }

  // Microseconds of each press; words of 39 letters, so that the buffer is as long as in use.
  std::vector<double> measure(bool words) {
    std::vector<double> samples;
    samples.reserve(kPresses);
    for (int i = 0; i < kPresses; ++i) {
      const bool space = words && i % 40 == 39;
      const auto begin = std::chrono::steady_clock::now();
      if (space) {
        monitor_.handleKeyDown(space_);
      } else {
        press(i);
      }
      samples.push_back(
          std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() - begin).count());
    }
    return samples;
  }

 private:
  void press(int i) {
    letter_.characters[0] = static_cast<char16_t>(u'a' + i % 26);
    monitor_.handleKeyDown(letter_);
  }

  FakeDesktop desktop_;
  FakeUserDefaults defaults_;
  FakeEnvironment environment_;
  FakeAlerts alerts_;
  FakeAudioPlayer player_;
  FakeBackgroundQueue background_;
  FakeOwnApplication application_;
  FakeUserNotifications notifications_;
  FakeFillInPrompt prompt_{desktop_.queue};
  QLSnippetMacroInterpreter interpreter_{environment_, [](const auto&) { return std::nullopt; }};
  MacroPreparation preparation_{interpreter_, prompt_};
  SettingsController settings_{defaults_, desktop_.queue, [this] { return environment_.now(); },
                               [] { return std::nullopt; }};
  PersistenceController persistence_{desktop_.queue, environment_};
  ManagedObjectContext& context_ = persistence_.managedObjectContext();
  SoundManager sound_{settings_, environment_, player_, background_};
  AccessibilityManager accessibility_{desktop_, settings_, desktop_, alerts_, desktop_.queue, {}};
  PasteController paste_{{desktop_.queue, desktop_.pasteboard, desktop_, desktop_, desktop_, desktop_,
                          desktop_, desktop_, application_, notifications_, settings_, sound_, preparation_}};
  ExpansionUndo undo_{{desktop_.queue, desktop_, desktop_, desktop_, desktop_, desktop_, key::kBackspace}};
  AbbreviationsMonitor monitor_{{desktop_.queue, desktop_, desktop_, desktop_, desktop_, settings_,
                                 accessibility_, persistence_, context_, desktop_, paste_, undo_}};
  KeyDownEvent letter_{0, 0, u"a", KeyDownEvent::Origin::keyboard};
  KeyDownEvent space_{key::kSpace, 0, u" ", KeyDownEvent::Origin::keyboard};
};

void run(Figures& figures) {
  {
    Typist typist(1'000);
    figures.add("key_down_p50_us_1k", percentile(typist.measure(true), 0.5));
  }
  Typist typist(100'000);
  const auto samples = typist.measure(true);
  figures.add("key_down_p50_us_100k", percentile(samples, 0.5));
  figures.add("key_down_p99_us_100k", percentile(samples, 0.99));
  typist.fillBuffer(1'000'000);
  figures.add("key_down_p50_us_buffer_1m", percentile(typist.measure(false), 0.5));
}

}  // namespace
}  // namespace quorlo

int main(int argc, char** argv) {
  quorlo::Figures figures(argc, argv);
  quorlo::run(figures);
}

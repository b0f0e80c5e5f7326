#include "apps/thermoscribe-desktop/desktop_components.h"

#include <algorithm>
#include <iostream>

#include "apps/thermoscribe-desktop/noted_line.h"
#include "vane/support/messages.h"

namespace vane::desktop {
namespace {

class CEndingProgress final : public CVaneProgress {
 public:
  CEndingProgress(std::unique_ptr<CVaneProgress> shown,
                  std::shared_ptr<CDesktopFactory::RunState> state)
      : shown_(std::move(shown)), state_(std::move(state)) {}

  void SetVisible(bool flag) override { shown_->SetVisible(flag); }
  void Attach(ui::CWindow* frm) override { shown_->Attach(frm); }
  void Hide(bool flag) override { shown_->Hide(flag); }
  void Start(const std::string& text, double share) override { shown_->Start(text, share); }
  bool Step(std::int32_t total, std::int32_t position, std::int32_t extra) override {
    const bool goeson = shown_->Step(total, position, extra);
    if (!goeson) state_->isstopped = true;
    return goeson && !state_->ends;
  }
  void Finish() override { shown_->Finish(); }

 private:
  const std::unique_ptr<CVaneProgress> shown_;
  const std::shared_ptr<CDesktopFactory::RunState> state_;
};

}  // namespace

EBoxButton CDesktopPlatform::MessageBox(const std::string& text, const std::string& title,
                                        std::int32_t flags, const std::string& helpfile,
                                        std::int32_t helpcontext) {
  if ((flags & kBoxYesNo) == 0) ++boxes_;
  if (isprinting_) {
    std::string lines = text;
    std::ranges::replace(lines, '\r', '\n');
    std::cerr << "thermoscribe-desktop: " << lines << std::endl;
  }
  if (isquiet_) return (flags & kBoxYesNo) != 0 ? EBoxButton::NO : EBoxButton::OK;
  return CQtPlatform::MessageBox(text, title, flags, helpfile, helpcontext);
}

std::unique_ptr<CVaneCommunications> CDesktopFactory::MakeCommunications() {
  return std::make_unique<CNotedLine>(CQtFactory::MakeCommunications(), reading_);
}

std::unique_ptr<CVaneProgress> CDesktopFactory::MakeProgress() {
  return std::make_unique<CEndingProgress>(progress_ ? progress_() : CQtFactory::MakeProgress(),
                                           state_);
}

}  // namespace vane::desktop

#include <framework_utility/platform/foundation/values/error.h>

#include <framework_utility/platform/foundation/values/value.h>

#include <utility>
#include <vector>

namespace FrameworkUtility {

struct Error::Contents {
  std::string domain;
  std::int64_t code = 0;
  Dictionary userInfo;

  static const Contents& of(const Error& error) {
    static const Contents none;
    return error.contents_ ? *error.contents_ : none;
  }
};

Error::Error(std::string_view domain, std::int64_t code) : Error(domain, code, Dictionary()) {}

Error::Error(std::string_view domain, std::int64_t code, Dictionary userInfo)
    : contents_(std::make_shared<const Contents>(
          Contents{std::string(domain), code, std::move(userInfo)})) {}

// The contents' user information holds the cause, whose destructor runs inside this one. So the
// outermost destructor of a thread takes the inner ones' contents and lets go of them in turn.
Error::~Error() {
  static thread_local std::vector<std::shared_ptr<const Contents>>* waiting = nullptr;
  if (!contents_) return;
  if (waiting) {
    waiting->push_back(std::move(contents_));
    return;
  }
  std::vector<std::shared_ptr<const Contents>> mine;
  waiting = &mine;
  contents_.reset();
  while (!mine.empty()) {
    std::shared_ptr<const Contents> next = std::move(mine.back());
    mine.pop_back();
    next.reset();
  }
  waiting = nullptr;
}

const std::string& Error::domain() const& { return Contents::of(*this).domain; }

std::int64_t Error::code() const { return Contents::of(*this).code; }

const Dictionary& Error::userInfo() const& { return Contents::of(*this).userInfo; }

Dictionary Error::userInfo() const&& { return userInfo(); }

bool Error::is(const ErrorCode& code) const {
  return this->code() == code.code && domain() == code.domain;
}

std::string Error::localizedDescription() const {
  if (const auto* text = userInfo().get<std::string>(NSLocalizedDescriptionKey)) return *text;
  return "The operation couldn’t be completed. (" + domain() + " error " + std::to_string(code()) +
         ".)";
}

std::optional<Error> Error::underlyingError() const {
  const Error* cause = userInfo().get<Error>(NSUnderlyingErrorKey);
  return cause ? std::optional(*cause) : std::nullopt;
}

std::string Error::description() const {
  return "Error Domain=" + domain() + " Code=" + std::to_string(code()) + " \"" +
         localizedDescription() + '"';
}

// Walks the two chains of causes side by side: they may be too long for recursion.
bool operator==(const Error& a, const Error& b) {
  const Error* left = &a;
  const Error* right = &b;
  while (left->contents_ != right->contents_) {
    const Dictionary& leftInfo = left->userInfo();
    const Dictionary& rightInfo = right->userInfo();
    if (left->code() != right->code() || left->domain() != right->domain() ||
        leftInfo.size() != rightInfo.size()) {
      return false;
    }
    const Error* leftCause = leftInfo.get<Error>(NSUnderlyingErrorKey);
    const Error* rightCause = rightInfo.get<Error>(NSUnderlyingErrorKey);
    const bool bothHaveCauses = leftCause && rightCause;
    for (const auto& [key, value] : leftInfo) {
      if (bothHaveCauses && key == NSUnderlyingErrorKey) continue;
      const Value* other = rightInfo.find(key);
      if (!other || !(*other == value)) return false;
    }
    if (!bothHaveCauses) return true;
    left = leftCause;
    right = rightCause;
  }
  return true;
}

}  // namespace FrameworkUtility

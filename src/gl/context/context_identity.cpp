#include "gl/context/context_identity.h"

#include <algorithm>
#include <functional>
#include <limits>
#include <mutex>
#include <optional>
#include <string_view>
#include <vector>

#include "core/exception.h"
#include "core/immortal.h"
#include "gl/context/current_context.h"
#include "gl/context/opengl_loader.h"
#include "gl/gl.h"

namespace oct::gl {
namespace {

struct KnownContext {
  void* handle = nullptr;
  ContextIdentity identity = no_context;
  GLuint marker = 0;  // vertex array object of that context; 0: a context of the library's own
  Driver driver{};    // of a context of the library's own, once it was asked
};

struct Registry {
  std::mutex mutex;
  ContextIdentity next = 0x6F63'7401'0000'0001;  // neither half is a divisor that a client would set
  std::vector<KnownContext> contexts;            // nearly in the order of their identities

  void close() {
    const std::unique_lock lock(mutex, std::try_to_lock);
    if (lock && contexts.empty()) contexts.shrink_to_fit();
  }
};

Registry& registry() {
  return immortal<Registry>();
}

struct Answer {
  bool valid = false;
  ContextIdentity identity = no_context;
  bool driver_valid = false;
  Driver driver{};
};
thread_local Answer answer;

// The end of a context without handle is never seen; the oldest are forgotten.
constexpr std::ptrdiff_t most_without_handle = 64;

// A vertex array object is shared with no other context, and the divisors of its attributes are numbers that
// OpenGL keeps without looking at them.
class VertexArrayBinding {
 public:
  explicit VertexArrayBinding(GLuint name) { glBindVertexArray(name); }
  ~VertexArrayBinding() { glBindVertexArray(static_cast<GLuint>(before_)); }
  VertexArrayBinding(const VertexArrayBinding&) = delete;
  VertexArrayBinding& operator=(const VertexArrayBinding&) = delete;

 private:
  const GLint before_ = integer(GL_VERTEX_ARRAY_BINDING);
};

constexpr GLuint low_attribute = 1;
constexpr GLuint high_attribute = 2;

bool can_mark() {
  return is_loaded_for_current_driver() && current_driver().version >= Version{3, 3} && glVertexAttribDivisor;
}

GLuint make_marker(ContextIdentity identity) {
  GLuint marker = 0;
  glGenVertexArrays(1, &marker);
  if (marker == 0) return 0;
  const VertexArrayBinding binding(marker);
  glVertexAttribDivisor(low_attribute, static_cast<GLuint>(identity));
  glVertexAttribDivisor(high_attribute, static_cast<GLuint>(identity >> 32));
  return marker;
}

ContextIdentity divisor(GLuint attribute) {
  GLint value = 0;
  glGetVertexAttribiv(attribute, GL_VERTEX_ATTRIB_ARRAY_DIVISOR, &value);
  return static_cast<GLuint>(value);
}

bool is_marked(const KnownContext& context) {
  if (!glIsVertexArray(context.marker)) return false;
  const VertexArrayBinding binding(context.marker);
  return (divisor(high_attribute) << 32 | divisor(low_attribute)) == context.identity;
}

// The latest of that handle among those before `identity`. Takes no memory, as destructors ask.
std::optional<KnownContext> latest_before(ContextIdentity identity, void* handle) {
  std::optional<KnownContext> latest;
  const std::lock_guard lock(registry().mutex);
  for (const KnownContext& context : registry().contexts) {
    const bool candidate = context.handle == handle && context.identity < identity;
    if (candidate && (!latest || latest->identity < context.identity)) latest = context;
  }
  return latest;
}

void erase(ContextIdentity identity) {
  const std::lock_guard lock(registry().mutex);
  std::erase_if(registry().contexts,
                [identity](const KnownContext& context) { return context.identity == identity; });
}

ContextIdentity find(void* handle) {
  auto candidate = latest_before(std::numeric_limits<ContextIdentity>::max(), handle);
  if (!candidate) return no_context;
  if (candidate->marker == 0) return candidate->identity;
  if (!can_mark()) return no_context;
  for (; candidate; candidate = latest_before(candidate->identity, handle)) {
    if (is_marked(*candidate)) return candidate->identity;
    if (handle) erase(candidate->identity);  // a context that is gone: its handle is another one's now
  }
  return no_context;
}

// Takes the memory for it as well, so that no mark is left in a context that is not remembered.
ContextIdentity next_identity() {
  const std::lock_guard lock(registry().mutex);
  registry().contexts.reserve(registry().contexts.size() + 1);
  return registry().next++;
}

void remember(const KnownContext& context) {
  const std::lock_guard lock(registry().mutex);
  auto& contexts = registry().contexts;
  contexts.push_back(context);
  const auto without_handle = [](const KnownContext& known) { return !known.handle; };
  if (std::ranges::count_if(contexts, without_handle) > most_without_handle)
    contexts.erase(std::ranges::find_if(contexts, without_handle));
}

// The context of the library's own that has this handle. Takes no memory.
std::optional<KnownContext> latest_own(void* handle) {
  const auto latest = latest_before(std::numeric_limits<ContextIdentity>::max(), handle);
  return latest && latest->marker == 0 ? latest : std::nullopt;
}

void remember_driver(ContextIdentity identity, const Driver& driver) {
  const std::lock_guard lock(registry().mutex);
  for (KnownContext& context : registry().contexts)
    if (context.identity == identity) context.driver = driver;
}

// A number instead of the names, which takes no memory.
Driver ask_driver() {
  if (!is_context_current()) return {};
  const std::string_view version = opengl_text(GL_VERSION);
  const std::hash<std::string_view> hash;
  const std::size_t card = (hash(opengl_text(GL_VENDOR)) * 31 + hash(opengl_text(GL_RENDERER))) | 1U;
  return {card, version.starts_with("OpenGL ES") ? Version{} : current_version()};
}

}  // namespace

ContextIdentity current_identity() {
  if (!answer.valid) {
    answer.identity = current_driver().card != 0 ? find(current_context()) : no_context;
    answer.valid = true;
  }
  return answer.identity;
}

ContextIdentity require_identity() {
  if (current_identity() != no_context || !can_mark()) return answer.identity;
  const ContextIdentity identity = next_identity();
  const GLuint marker = make_marker(identity);
  if (marker == 0) return no_context;
  remember({current_context(), identity, marker});
  answer.identity = identity;
  return identity;
}

Driver current_driver() {
  if (answer.driver_valid) return answer.driver;
  void* const handle = current_context();
  const std::optional<KnownContext> own = handle ? latest_own(handle) : std::nullopt;
  const bool known = own && own->driver.card != 0;
  answer.driver = known ? own->driver : ask_driver();
  answer.driver_valid = true;
  if (own && !known) remember_driver(own->identity, answer.driver);
  return answer.driver;
}

void forget_current_identity() {
  answer = {};
}

ContextIdentity register_context(void* handle) {
  const ContextIdentity identity = next_identity();
  remember({handle, identity, 0});
  return identity;
}

void unregister_context(ContextIdentity identity) {
  erase(identity);
  if (answer.identity == identity) forget_current_identity();
}

bool is_known(ContextIdentity identity) {
  const std::lock_guard lock(registry().mutex);
  return std::ranges::find(registry().contexts, identity, &KnownContext::identity) !=
         registry().contexts.end();
}

void require_home(ContextIdentity home) {
  if (current_identity() != home)
    throw StateError("The renderer was initialised in another OpenGL context. ");
}

}  // namespace oct::gl

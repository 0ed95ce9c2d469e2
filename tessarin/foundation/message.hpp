// Messages: what a user can be told, by catalog, id and arguments, and the exceptions that carry them.
//
// The rows of messages.def are the catalog; messages.hpp has a class for each. In the text of a message, and in the
// string that says where, lines and columns count from 1.
#pragma once

#include "tessarin/export.hpp"
#include "tessarin/foundation/exception.hpp"
#include "tessarin/foundation/location.hpp"

#include <atomic>
#include <cstddef>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace nvf {

/// How grave a message is.
enum class Severity : unsigned char { Warning, Error };

/// The kind of an argument, as the rows of the catalog name it.
enum class ArgumentKind : unsigned char { Where, Text, Integer };

/// A row of the catalog.
struct MessageInfo {
  std::string_view catalog; ///< such as "kelvane:tessarin:compiler:core:parse"
  /// The name within its catalog, and how grave it is.
  /// @{
  std::string_view id;
  Severity severity;
  /// @}
  std::string_view text; ///< with `{n}` for the n-th argument, from 1
  /// The sorts of the arguments, in their order.
  std::span<const ArgumentKind> arguments;
  /// What a message about a text in a string says, which has no place or no file; empty where it says the same.
  std::string_view textOfString;
};

/// All rows, sorted by family.
TESSARIN_EXPORT std::span<const MessageInfo> all_messages();

/// The row of a message, or null where the catalog has none.
TESSARIN_EXPORT const MessageInfo* find_message(std::string_view catalog, std::string_view id);

/// What the names of all catalogs begin with; the rest names the family.
inline constexpr std::string_view catalogPrefix = "kelvane:tessarin:compiler:core:";

/// The extension of the files in which translations of the catalogs are kept.
inline constexpr std::string_view catalogExtension = ".kvmsg";

/// A number, or a text.
using MessageArgument = std::variant<long, ustring>;

/// A message before it is formatted.
struct TESSARIN_EXPORT BaseMsgID {
  /// The arguments in their order, the catalog, and the name in it.
  /// @{
  std::vector<MessageArgument> arguments;
  std::string catalog;
  std::string id;
  /// @}
  friend bool operator==(const BaseMsgID&, const BaseMsgID&) = default;
};

/// A message that can be shown.
class TESSARIN_EXPORT Message {
public:
  /// A message without a place.
  explicit Message(BaseMsgID id) : id_(std::move(id)) {}
  /// A message about a place, which tools can read as such.
  Message(BaseMsgID id, const Location& location) : id_(std::move(id)), location_(location) {}

  /// What is said, and about which place, if any.
  /// @{
  [[nodiscard]] const BaseMsgID& id() const noexcept { return id_; }
  [[nodiscard]] const std::optional<Location>& location() const noexcept { return location_; }
  /// @}
  /// Of a message that the catalog does not know: `Error`.
  [[nodiscard]] Severity severity() const;
  /// The sentence of the catalog with its arguments, without the place; where the message is about a text in a string
  /// and the catalog has a sentence for that, this one. A message that the catalog does not know shows its id and its
  /// arguments.
  [[nodiscard]] ustring text() const;
  /// The place, where the message has one, a colon, and the sentence.
  [[nodiscard]] ustring fullMessage() const;

private:
  [[nodiscard]] bool isOfString(const MessageInfo& info) const;

  BaseMsgID id_;
  std::optional<Location> location_;
};

/// Says where, without the column: `path:line`, or `line N` where there is no path.
TESSARIN_EXPORT ustring file_line_message(const Location& location);
/// Says where, with the column: `path:line:column`, or `line N, column M` where there is no path.
TESSARIN_EXPORT ustring file_line_column_message(const Location& location);

/// An error without a place. A derived class may show another text: `what()` and `fullMessage()` tell the same, and
/// both ask the hooks `message_`.
class TESSARIN_EXPORT MessageException : public Exception {
public:
  /// Copies the message.
  explicit MessageException(const Message& message);
  MessageException(const MessageException&) = default;
  MessageException(MessageException&&) = default;
  MessageException& operator=(const MessageException&) = default;
  MessageException& operator=(MessageException&&) = default;
  ~MessageException() override;

  /// What is said.
  /// @{
  [[nodiscard]] const BaseMsgID& id() const noexcept { return message_value_.id(); }
  [[nodiscard]] const Message& message() const noexcept { return message_value_; }
  /// @}
  /// A copy of the exception. A derived class overrides it: this one copies the base alone.
  [[nodiscard]] virtual std::unique_ptr<MessageException> clone() const;
  /// The text that is shown: that of the hook that a derived class has overridden, the one for UTF-16 where it has
  /// both; otherwise that of the message.
  [[nodiscard]] ustring fullMessage() const;
  /// The same in UTF-8, as it was when it was first asked for. Where the hooks fail it is the text of the message.
  [[nodiscard]] const char* what() const noexcept override;
  /// The message.
  [[nodiscard]] const Message* findMessage() const noexcept override { return &message_value_; }
  /// The place of the message, or null.
  [[nodiscard]] const Location* findLocation() const noexcept override {
    return message_value_.location() ? &*message_value_.location() : nullptr;
  }

protected:
  /// Fills in the text that is shown, in UTF-8. By default that of the message.
  virtual void message_(std::string& text) const;
  /// The same in UTF-16.
  virtual void message_(ustring& text) const;

private:
  /// What `what()` gives, once it has been asked for. A copy makes its own, for it may be of another class.
  class Shown {
  public:
    Shown() noexcept = default;
    Shown(const Shown&) noexcept {}
    Shown& operator=(const Shown& other) noexcept;
    ~Shown();
    std::atomic<const std::string*> text = nullptr; ///< Owned.
  };

  Message message_value_;
  mutable Shown shown_;
};

/// An error at a place. The first argument of its message says where, with or without the column.
class TESSARIN_EXPORT LocationException : public Exception {
public:
  /// `showColumn` says whether the place is shown with its column.
  LocationException(const Message& message, Location location, bool showColumn);
  LocationException(const LocationException&) = default;
  LocationException(LocationException&&) = default;
  LocationException& operator=(const LocationException&) = default;
  LocationException& operator=(LocationException&&) = default;
  ~LocationException() override;

  /// What is said, about which place, and the text of the message.
  /// @{
  [[nodiscard]] const BaseMsgID& id() const noexcept { return message_.id(); }
  [[nodiscard]] const Message& message() const noexcept { return message_; }
  [[nodiscard]] const Location& location() const noexcept { return location_; }
  [[nodiscard]] bool showColumn() const noexcept { return showColumn_; }
  [[nodiscard]] ustring fullMessage() const { return message_.fullMessage(); }
  /// @}

  /// The place as it stands in messages: file, line and, where it is shown, column, both from 1.
  static ustring loc2str(const Location& location, bool showColumn);
  /// The message, and the place.
  /// @{
  [[nodiscard]] const Message* findMessage() const noexcept override { return &message_; }
  [[nodiscard]] const Location* findLocation() const noexcept override { return &location_; }
  /// @}

private:
  Message message_;
  Location location_;
  bool showColumn_;
};

/// The error that carries the message `Msg` at a place; `arguments` follow the place.
template <class Msg>
class LocatedError : public LocationException {
public:
  /// The message of the type `Msg`: its first argument is the place as text, the others are `arguments`.
  template <class... Arguments>
  LocatedError(const Location& location, bool showColumn, const Arguments&... arguments)
      : LocationException(Message(Msg(loc2str(location, showColumn), arguments...), location), location, showColumn) {}
};

} // namespace nvf

#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace TR {

/// One parameter: its typed elements (a scalar is a list of one) and its settings: whether the ACS
/// may write it, whether every Inform carries it, and where it is kept. Booleans are `Integer` 0 or
/// 1. A plain value: a caller that reaches one inside the store holds the store mutex.
class Value {
  public:
    enum class Type : std::uint32_t {
        Undefined = 0,  ///< a fresh entry that nobody has filled yet
        Object = 1,     ///< a node of the tree, its path ends with a point; carries no data
        Integer = 2,
        String = 3,
    };

    /// One element; both members always exist; the value's type decides which one counts.
    struct ValueHolder {
        std::int64_t integer = 0;
        std::string text;

        bool operator==(const ValueHolder& other) const {
            return integer == other.integer && text == other.text;
        }
        bool operator!=(const ValueHolder& other) const { return !(*this == other); }
    };

    Value() : Value(Type::Undefined) {}
    explicit Value(long long number);
    explicit Value(const std::string& text);
    explicit Value(std::string&& text);
    explicit Value(Type type) : Value(type, 1) {}
    /// \p count default elements; 0 makes an empty list, to be filled with the push operations.
    Value(Type type, unsigned count) : type_(type), elements_(count) {}
    /// An object node.
    static Value Object() { return Value(Type::Object); }

    Type getType() const { return type_; }
    /// The first element's number; 0 when there is no element.
    std::int64_t getInt64() const;
    /// The first element's text; empty when there is no element.
    std::string getString() const;
    std::vector<ValueHolder> getList() const { return elements_; }
    bool isArray() const { return elements_.size() > 1; }

    /// Adds an element. The first push onto an untyped value fills its first element and settles
    /// the type; a value of the other type refuses with false and stays as it is.
    bool listPushInteger(long long number);
    bool listPushString(const std::string& text);

    void setMutableByUser(bool isMutable) { mutableByUser_ = isMutable; }
    bool isMutableByUser() const { return mutableByUser_; }
    void setForcedInform(bool forced) { forcedInform_ = forced; }
    bool isForcedInform() const { return forcedInform_; }
    /// UCI option (package.section.option) that keeps the value; empty when none does.
    void setPathInConfig(const std::string& path) { pathInConfig_ = path; }
    const std::string& getPathInConfig() const { return pathInConfig_; }
    /// File whose whole content is the value; empty when none is.
    void setFilePathToStoreValue(const std::string& path) { filePathToStoreValue_ = path; }
    const std::string& filePathToStoreValue() const { return filePathToStoreValue_; }

    /// Takes over the other's elements, never its type or settings. False, and no change, when the
    /// types differ; an untyped value takes any elements and stays untyped.
    bool setValue(const Value& other);

    /// Writes of the ACS to the first element; false, and no change, unless the value is mutable by
    /// the user. The type is neither checked nor changed.
    bool setByUser(long long number);
    bool setByUser(const std::string& text);
    /// The ACS's write as text, converted to the value's type. An untyped value becomes `Integer`
    /// when the text starts with a 64-bit number, else `String`. False, and no change, when the
    /// value is not mutable or an `Integer` value is given no such number; what follows the number
    /// is ignored.
    bool setByUserWithConversion(const std::string& text);

    /// Types and elements; the settings take no part.
    bool operator==(const Value& other) const;
    bool operator!=(const Value& other) const { return !(*this == other); }

    /// The elements joined by ", "; empty for `Undefined`, `Object` and a list without elements.
    std::string toString() const&;
    std::string toString() &&;

  private:
    ValueHolder& firstElement();
    ValueHolder& pushedElement(Type type);

    Type type_;
    std::vector<ValueHolder> elements_;
    bool mutableByUser_ = false;
    std::string filePathToStoreValue_;
    bool forcedInform_ = false;
    std::string pathInConfig_;
};

}  // namespace TR

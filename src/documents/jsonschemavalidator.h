#ifndef JSONSCHEMAVALIDATOR_H
#define JSONSCHEMAVALIDATOR_H

#include <QJsonObject>
#include <QJsonValue>
#include <QString>

/// Checks a JSON value against the part of JSON Schema (2020-12) that the
/// tool's own schema files use, and names the first place that breaks it as
/// a JSON pointer (RFC 6901): "/devices/3/limits/up: 70000 is above 65534".
///
/// Keywords understood: `type` (one name or a list; "integer" is a number
/// without fraction), `enum`, `const`, `properties`, `required`,
/// `additionalProperties` (true or false), `items` (one schema), `minItems`,
/// `maxItems`, `minimum`, `maximum`, `minLength`, `maxLength` (in characters)
/// and `$ref` to "#/..." within the same schema. The keyword `x-maxBytes`
/// limits a string's length in bytes of UTF-8, as a device stores it. Any
/// other keyword is ignored, as JSON Schema ignores unknown keywords.
///
///     JsonSchemaValidator v(schema);
///     if (!v.validate(document)) qWarning() << v.errorPointer() << v.errorString();
class JsonSchemaValidator
{
public:
    explicit JsonSchemaValidator(const QJsonObject& schema);

    /// True when `value` satisfies the schema; otherwise the first failure is
    /// kept in `errorPointer()` and `errorString()`.
    bool validate(const QJsonValue& value);
    /// Where the failure is, as a JSON pointer ("" is the whole document).
    QString errorPointer() const { return m_pointer; }
    /// What is wrong there, for people.
    QString errorString() const { return m_error; }
    /// "POINTER: TEXT", the pointer written "/" for the whole document.
    QString message() const;

    /// `token` escaped for a JSON pointer ("~" as "~0", "/" as "~1").
    static QString escape(const QString& token);
    /// The value `pointer` names within `root`; undefined when there is none.
    static QJsonValue resolve(const QJsonValue& root, const QString& pointer);

private:
    bool check(const QJsonValue& value, const QJsonObject& schema, const QString& where, int depth);
    bool fail(const QString& where, const QString& text);

    QJsonObject m_schema;
    QString m_pointer;
    QString m_error;
};

#endif // JSONSCHEMAVALIDATOR_H

#include "jsonschemavalidator.h"

#include <QCoreApplication>
#include <QJsonArray>

#include <algorithm>
#include <cmath>

namespace {

// A schema refers to itself at most this deep; deeper is a loop of $ref.
constexpr int MaxDepth = 64;

QString typeOf(const QJsonValue& v)
{
    switch (v.type()) {
    case QJsonValue::Null: return QStringLiteral("null");
    case QJsonValue::Bool: return QStringLiteral("boolean");
    case QJsonValue::Double: {
        const double d = v.toDouble();
        return std::floor(d) == d && std::isfinite(d) ? QStringLiteral("integer") : QStringLiteral("number");
    }
    case QJsonValue::String: return QStringLiteral("string");
    case QJsonValue::Array: return QStringLiteral("array");
    case QJsonValue::Object: return QStringLiteral("object");
    case QJsonValue::Undefined: break;
    }
    return QStringLiteral("undefined");
}

bool hasType(const QJsonValue& v, const QString& type)
{
    const QString actual = typeOf(v);
    return actual == type || (type == QLatin1String("number") && actual == QLatin1String("integer"));
}

QString shown(const QJsonValue& v)
{
    switch (v.type()) {
    case QJsonValue::String: return QLatin1Char('"') + v.toString().left(40) + QLatin1Char('"');
    case QJsonValue::Double: return QString::number(v.toDouble(), 'g', 15);
    case QJsonValue::Bool: return v.toBool() ? QStringLiteral("true") : QStringLiteral("false");
    case QJsonValue::Null: return QStringLiteral("null");
    default: return typeOf(v);
    }
}

QString tr(const char* text)
{
    return QCoreApplication::translate("JsonSchemaValidator", text);
}

} // namespace

JsonSchemaValidator::JsonSchemaValidator(const QJsonObject& schema)
    : m_schema(schema)
{
}

bool JsonSchemaValidator::validate(const QJsonValue& value)
{
    m_pointer.clear();
    m_error.clear();
    return check(value, m_schema, QString(), 0);
}

QString JsonSchemaValidator::message() const
{
    return QStringLiteral("%1: %2").arg(m_pointer.isEmpty() ? QStringLiteral("/") : m_pointer, m_error);
}

QString JsonSchemaValidator::escape(const QString& token)
{
    QString t = token;
    return t.replace(QLatin1Char('~'), QLatin1String("~0")).replace(QLatin1Char('/'), QLatin1String("~1"));
}

QJsonValue JsonSchemaValidator::resolve(const QJsonValue& root, const QString& pointer)
{
    if (pointer.isEmpty())
        return root;
    if (!pointer.startsWith(QLatin1Char('/')))
        return QJsonValue(QJsonValue::Undefined);
    QJsonValue at = root;
    const QStringList tokens = pointer.mid(1).split(QLatin1Char('/'));
    for (QString token : tokens) {
        token.replace(QLatin1String("~1"), QLatin1String("/")).replace(QLatin1String("~0"), QLatin1String("~"));
        if (at.isObject()) {
            at = at.toObject().value(token);
        } else if (at.isArray()) {
            bool ok = false;
            const int i = token.toInt(&ok);
            if (!ok || i < 0 || i >= at.toArray().size())
                return QJsonValue(QJsonValue::Undefined);
            at = at.toArray().at(i);
        } else {
            return QJsonValue(QJsonValue::Undefined);
        }
    }
    return at;
}

bool JsonSchemaValidator::fail(const QString& where, const QString& text)
{
    m_pointer = where;
    m_error = text;
    return false;
}

bool JsonSchemaValidator::check(const QJsonValue& value, const QJsonObject& schema, const QString& where, int depth)
{
    if (depth > MaxDepth)
        return fail(where, tr("the schema refers to itself without end"));
    if (schema.contains(QLatin1String("$ref"))) {
        const QString ref = schema.value(QLatin1String("$ref")).toString();
        const QJsonValue target = ref.startsWith(QLatin1Char('#')) ? resolve(m_schema, ref.mid(1)) : QJsonValue();
        if (!target.isObject())
            return fail(where, tr("the schema's reference %1 leads nowhere").arg(ref));
        if (!check(value, target.toObject(), where, depth + 1))
            return false;
    }
    if (schema.contains(QLatin1String("type"))) {
        const QJsonValue t = schema.value(QLatin1String("type"));
        QStringList allowed;
        if (t.isArray()) {
            for (const QJsonValue& name : t.toArray())
                allowed << name.toString();
        } else {
            allowed << t.toString();
        }
        if (std::none_of(allowed.begin(), allowed.end(), [&](const QString& n) { return hasType(value, n); }))
            return fail(where, tr("%1 is not of the type %2").arg(shown(value), allowed.join(QLatin1String(" or "))));
    }
    if (schema.contains(QLatin1String("const")) && value != schema.value(QLatin1String("const")))
        return fail(where, tr("%1 is not %2").arg(shown(value), shown(schema.value(QLatin1String("const")))));
    if (schema.contains(QLatin1String("enum"))) {
        const QJsonArray options = schema.value(QLatin1String("enum")).toArray();
        if (!options.contains(value)) {
            QStringList names;
            for (const QJsonValue& o : options)
                names << shown(o);
            return fail(where, tr("%1 is none of %2").arg(shown(value), names.join(QLatin1String(", "))));
        }
    }
    if (value.isDouble()) {
        const double d = value.toDouble();
        if (schema.contains(QLatin1String("minimum")) && d < schema.value(QLatin1String("minimum")).toDouble())
            return fail(where, tr("%1 is below %2").arg(shown(value), shown(schema.value(QLatin1String("minimum")))));
        if (schema.contains(QLatin1String("maximum")) && d > schema.value(QLatin1String("maximum")).toDouble())
            return fail(where, tr("%1 is above %2").arg(shown(value), shown(schema.value(QLatin1String("maximum")))));
    }
    if (value.isString()) {
        const QString s = value.toString();
        // Characters as JSON Schema counts them: code points, not UTF-16 units.
        const int length = s.toUcs4().size();
        if (schema.contains(QLatin1String("minLength")) && length < schema.value(QLatin1String("minLength")).toInt())
            return fail(where, tr("the text is shorter than %1 characters").arg(schema.value(QLatin1String("minLength")).toInt()));
        if (schema.contains(QLatin1String("maxLength")) && length > schema.value(QLatin1String("maxLength")).toInt())
            return fail(where, tr("the text is %1 characters long, more than %2").arg(length).arg(schema.value(QLatin1String("maxLength")).toInt()));
        const int bytes = s.toUtf8().size();
        if (schema.contains(QLatin1String("x-maxBytes")) && bytes > schema.value(QLatin1String("x-maxBytes")).toInt())
            return fail(where, tr("the text is %1 bytes of UTF-8, more than %2").arg(bytes).arg(schema.value(QLatin1String("x-maxBytes")).toInt()));
    }
    if (value.isArray()) {
        const QJsonArray array = value.toArray();
        if (schema.contains(QLatin1String("minItems")) && array.size() < schema.value(QLatin1String("minItems")).toInt())
            return fail(where, tr("%1 entries, fewer than %2").arg(array.size()).arg(schema.value(QLatin1String("minItems")).toInt()));
        if (schema.contains(QLatin1String("maxItems")) && array.size() > schema.value(QLatin1String("maxItems")).toInt())
            return fail(where, tr("%1 entries, more than %2").arg(array.size()).arg(schema.value(QLatin1String("maxItems")).toInt()));
        if (schema.value(QLatin1String("items")).isObject()) {
            const QJsonObject items = schema.value(QLatin1String("items")).toObject();
            for (int i = 0; i < array.size(); ++i) {
                if (!check(array.at(i), items, where + QLatin1Char('/') + QString::number(i), depth + 1))
                    return false;
            }
        }
    }
    if (value.isObject()) {
        const QJsonObject object = value.toObject();
        const QJsonObject properties = schema.value(QLatin1String("properties")).toObject();
        for (const QJsonValue& name : schema.value(QLatin1String("required")).toArray()) {
            if (!object.contains(name.toString()))
                return fail(where + QLatin1Char('/') + escape(name.toString()), tr("is missing"));
        }
        const bool closed = schema.value(QLatin1String("additionalProperties")) == QJsonValue(false);
        for (auto it = object.begin(); it != object.end(); ++it) {
            const QString at = where + QLatin1Char('/') + escape(it.key());
            if (properties.contains(it.key())) {
                if (!check(it.value(), properties.value(it.key()).toObject(), at, depth + 1))
                    return false;
            } else if (closed) {
                return fail(at, tr("is not a field of this format"));
            }
        }
    }
    return true;
}

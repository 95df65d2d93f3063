// vrnfwpack: builds, signs, inspects and verifies firmware packages.
//
//   vrnfwpack keygen SECRET PUBLIC
//   vrnfwpack build --key SECRET --types motor,dcmotor --version 2.1.0 [--block-size 16] IMAGE OUT
//   vrnfwpack inspect [--json] PACKAGE
//   vrnfwpack verify --key KEYFILE PACKAGE
//
// Exit codes: 0 done, 1 failure (one line "vrnfwpack: ..."), 2 usage.
#include "bpkpackage.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>

#include <cstdio>

namespace {

enum Exit { Ok = 0, Failure = 1, Usage = 2 };

int failWith(const QString& text, int code = Failure)
{
    std::fprintf(stderr, "vrnfwpack: %s\n", qPrintable(text));
    return code;
}

void say(const QString& text)
{
    std::fprintf(stdout, "%s\n", qPrintable(text));
}

int keygen(const QStringList& args)
{
    if (args.size() != 2)
        return failWith(QStringLiteral("keygen takes SECRET and PUBLIC file names"), Usage);
    const BpkKeys keys = BpkKeys::generate();
    QString error;
    if (!keys.canSign() || !keys.save(args[0], true, &error) || !keys.save(args[1], false, &error))
        return failWith(error.isEmpty() ? QStringLiteral("cannot make keys") : error);
    say(QStringLiteral("secret keys in %1, verify and image keys in %2").arg(args[0], args[1]));
    return Ok;
}

int build(QCommandLineParser& p, const QStringList& args)
{
    if (args.size() != 2 || !p.isSet(QStringLiteral("key")) || !p.isSet(QStringLiteral("types"))
        || !p.isSet(QStringLiteral("version")))
        return failWith(QStringLiteral("build takes --key, --types, --version, IMAGE and OUT"), Usage);
    BpkManifest m;
    for (const QString& name : p.value(QStringLiteral("types")).split(QLatin1Char(','), Qt::SkipEmptyParts)) {
        const int type = BpkManifest::nodeTypeFromName(name.trimmed());
        if (type <= 0)
            return failWith(QStringLiteral("unknown node type \"%1\"").arg(name), Usage);
        m.nodeTypes.append(type);
    }
    if (!BpkManifest::parseVersion(p.value(QStringLiteral("version")), &m))
        return failWith(QStringLiteral("--version: \"%1\" is not MAJOR.MINOR.PATCH[.BUILD]")
                            .arg(p.value(QStringLiteral("version"))), Usage);
    if (p.isSet(QStringLiteral("block-size"))) {
        bool ok = false;
        m.blockSize = p.value(QStringLiteral("block-size")).toInt(&ok);
        if (!ok || m.blockSize < 1 || m.blockSize > BpkManifest::MaxBlockSize)
            return failWith(QStringLiteral("--block-size: a number from 1 to 16"), Usage);
    }
    BpkKeys keys;
    QString error;
    if (!BpkKeys::load(p.value(QStringLiteral("key")), &keys, &error))
        return failWith(error);
    QFile in(args[0]);
    if (!in.open(QIODevice::ReadOnly))
        return failWith(QStringLiteral("cannot read %1: %2").arg(args[0], in.errorString()));
    if (in.size() < 1 || in.size() > BpkManifest::MaxImageSize)
        return failWith(QStringLiteral("image %1: size must be 1 to %2 bytes").arg(args[0]).arg(int(BpkManifest::MaxImageSize)));
    const QByteArray archive = BpkPackage::build(m, in.readAll(), keys, &error);
    if (archive.isEmpty())
        return failWith(error);
    QSaveFile out(args[1]);
    if (!out.open(QIODevice::WriteOnly) || out.write(archive) != archive.size() || !out.commit())
        return failWith(QStringLiteral("cannot write %1: %2").arg(args[1], out.errorString()));
    say(QStringLiteral("%1: version %2, %3 bytes").arg(args[1], m.versionString()).arg(in.size()));
    return Ok;
}

int inspect(QCommandLineParser& p, const QStringList& args)
{
    if (args.size() != 1)
        return failWith(QStringLiteral("inspect takes one PACKAGE"), Usage);
    const BpkPackage pkg = BpkPackage::load(args[0]);
    if (!pkg.isReadable())
        return failWith(QStringLiteral("%1: %2").arg(args[0], pkg.errorString()));
    const BpkManifest& m = pkg.manifest();
    QStringList kinds;
    for (int t : m.nodeTypes)
        kinds.append(BpkManifest::nodeTypeName(t));
    if (p.isSet(QStringLiteral("json"))) {
        QJsonObject o{{QStringLiteral("package"), args[0]},
                      {QStringLiteral("version"), m.versionString()},
                      {QStringLiteral("kinds"), QJsonArray::fromStringList(kinds)},
                      {QStringLiteral("size"), m.size},
                      {QStringLiteral("blockSize"), m.blockSize},
                      {QStringLiteral("blocks"), m.blockCount()},
                      {QStringLiteral("digest"), QString::fromLatin1(m.digest.toHex())}};
        say(QString::fromUtf8(QJsonDocument(o).toJson(QJsonDocument::Compact)));
    } else {
        say(QStringLiteral("version  %1\nkinds    %2\nsize     %3 bytes, %4 blocks of %5\ndigest   %6")
                .arg(m.versionString(), kinds.join(QLatin1Char(',')))
                .arg(m.size).arg(m.blockCount()).arg(m.blockSize)
                .arg(QString::fromLatin1(m.digest.toHex())));
    }
    return Ok;
}

int verify(QCommandLineParser& p, const QStringList& args)
{
    if (args.size() != 1 || !p.isSet(QStringLiteral("key")))
        return failWith(QStringLiteral("verify takes --key and one PACKAGE"), Usage);
    BpkKeys keys;
    QString error;
    if (!BpkKeys::load(p.value(QStringLiteral("key")), &keys, &error))
        return failWith(error);
    const BpkPackage pkg = BpkPackage::load(args[0]);
    if (pkg.image(keys, &error).isEmpty())
        return failWith(QStringLiteral("%1: %2").arg(args[0], error));
    say(QStringLiteral("%1: verified, version %2").arg(args[0], pkg.manifest().versionString()));
    return Ok;
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    QCommandLineParser p;
    p.setApplicationDescription(QStringLiteral(
        "Builds, signs, inspects and verifies firmware packages.\n"
        "  keygen SECRET PUBLIC       new keys: SECRET signs and encrypts, PUBLIC verifies and decrypts\n"
        "  build IMAGE OUT            --key SECRET --types T,... --version X.Y.Z[.B] [--block-size N]\n"
        "  inspect PACKAGE            what the package says of itself (not verified)\n"
        "  verify PACKAGE             --key PUBLIC: signature, image and digest"));
    p.addHelpOption();
    p.addOptions({
        {QStringLiteral("key"), QStringLiteral("Key file."), QStringLiteral("FILE")},
        {QStringLiteral("types"), QStringLiteral("Node types the image runs on: motor, motorio, tx30, lru50, tx50dc, "
                                                 "dcmotor, keypad, sensor, interface, settingtool."),
         QStringLiteral("LIST")},
        {QStringLiteral("version"), QStringLiteral("Version of the image."), QStringLiteral("X.Y.Z[.B]")},
        {QStringLiteral("block-size"), QStringLiteral("Bytes a block (1..16, default 16)."), QStringLiteral("N")},
        {QStringLiteral("json"), QStringLiteral("Print JSON.")},
    });
    if (!p.parse(app.arguments()))
        return failWith(p.errorText(), Usage);
    if (p.isSet(QStringLiteral("help"))) {
        say(p.helpText());
        return Ok;
    }
    QStringList args = p.positionalArguments();
    if (args.isEmpty())
        return failWith(QStringLiteral("name a command: keygen, build, inspect or verify"), Usage);
    const QString command = args.takeFirst();
    if (command == QLatin1String("keygen"))
        return keygen(args);
    if (command == QLatin1String("build"))
        return build(p, args);
    if (command == QLatin1String("inspect"))
        return inspect(p, args);
    if (command == QLatin1String("verify"))
        return verify(p, args);
    return failWith(QStringLiteral("unknown command \"%1\"").arg(command), Usage);
}

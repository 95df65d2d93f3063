#ifndef OPTIONS_H
#define OPTIONS_H

#include "simnetwork.h"

#include <QHostAddress>
#include <QString>
#include <QStringList>

/// The command line of vrnsim.
struct SimOptions
{
    enum Result { Run, Help, Error };

    bool serial = false;
    QHostAddress group;
    quint16 port = 0;
    QHostAddress bind{QHostAddress::LocalHost};
    QString devices = QStringLiteral("std:2,motor:3,dcmotor:1");
    int duplicates = 0;
    quint32 seed = 1;
    double loss = 0.0;
    double corrupt = 0.0;
    int latencyMs = 0;
    int baud = 0;
    int silent = 0;
    int encoderFaults = 0;
    int replyWindowMs = 50;
    double timeScale = 1.0;
    int powerLossAt = -1;
    double corruptBlocks = 0.0;
    SimNetwork::Hostile hostile = SimNetwork::NoHostile;

    /// Reads `arguments` (program name first); on Error `error` says why,
    /// on Help `error` holds the help text.
    Result parse(const QStringList& arguments, QString* error);
};

#endif // OPTIONS_H

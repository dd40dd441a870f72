#pragma once

#include <QString>
#include <QVector>

/// What is to be known of several commands, or of none.
struct HelpTopic
{
    QString name;  ///< as "rkmon help" takes it
    QString title; ///< what it is about, in a few words
    QString text;  ///< lines that fit; those that begin with blanks are examples
};

const QVector<HelpTopic>& helpTopics();

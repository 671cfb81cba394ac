#pragma once

#include <suite/model/finegray.h>
#include <suite/model/magicgraycoeffs.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

using Points = std::vector<Model::LXY>;

inline QJsonArray parseArray(const char* text)
{
    return QJsonDocument::fromJson(text).array();
}

inline QJsonObject parse(const QByteArray& text)
{
    return QJsonDocument::fromJson(text).object();
}

inline Points points(int count, double first)
{
    Points result;
    for (int i = 0; i < count; ++i)
        result.push_back({first + i, 0.3 + 0.001 * i, 0.33, {}});
    return result;
}

inline QList<Model::LXY> pointList(int count, double first)
{
    const Points all = points(count, first);
    return {all.begin(), all.end()};
}

inline Model::FineGrayCoeffs coeffs()
{
    Model::FineGrayCoeffs result;
    result.rGrayCoeffs = {0, 1, 255};
    result.gGrayCoeffs = {2};
    result.magnitudes = {9, 8};
    return result;
}

inline Model::FineGrayAdvanceParam advance(int whitePoints)
{
    Model::FineGrayAdvanceParam result;
    result.maxNum = 6;
    result.caliNum = 2;
    result.wMeasure = points(whitePoints, 100.0 * whitePoints);
    result.caliLength = 1000;
    result.rGrayCoeffs = {1, 2};
    result.bGrayCoeffs = {3};
    result.magBits = {4, 5, 6};
    result.rLumTarget = {0.125, 1e-9};
    result.bLumTarget = {7};
    return result;
}

inline Model::MagicGrayCoeffs magicGray()
{
    Model::MagicGrayCoeffs result;
    result.getR0Measures() = points(2, 1);
    result.getG0Measures() = points(1, 2);
    result.getB0Measures() = points(1, 3);
    result.getR1Measures() = points(1, 4);
    result.getG1Measures() = points(1, 5);
    result.getB1Measures() = points(1, 6);
    result.getFirstRMeasures() = points(1, 7);
    result.getFirstGMeasures() = points(1, 8);
    result.getFirstBMeasures() = points(1, 9);
    result.getACRMeasures() = {{0, points(1, 10)}, {1, points(2, 11)}};
    result.getACGMeasures() = {{0, points(1, 12)}};
    result.getACBMeasures() = {{0, points(1, 13)}};
    result.getWhiteMeasures() = {{0, {}}, {1, points(1, 14)}};
    result.getCurrentLUTs() = {-1, 0, 70000};
    result.getComGainLUTOdd() = {1};
    result.getComGainLUTEven() = {2};
    return result;
}

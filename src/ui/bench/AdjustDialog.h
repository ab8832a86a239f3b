#pragma once

#include <QDialog>
#include <QString>
#include <vector>

class QDoubleSpinBox;
class QFormLayout;
class QSlider;

namespace tarvex {

// A small dialog of Picture Bench that sets one or two numbers of an adjustment with a
// slider and a number box each (kept in step). The picture behind it shows the change
// while the values move (the window listens to ValuesChanged); OK applies it, Cancel or
// Esc leaves the picture as it was, and Reset puts every value back.
class AdjustDialog : public QDialog {
    Q_OBJECT
public:
    AdjustDialog(const QString& title, const QString& explanation, QWidget* parent = nullptr);

    // Adds a row of a value from minimum to maximum in steps of step; its index.
    int AddRow(const QString& label, double minimum, double maximum, double step, double value,
               const QString& suffix = QString());
    double Value(int row) const;
    void SetValue(int row, double value);
    int RowCount() const { return static_cast<int>(rows_.size()); }

signals:
    void ValuesChanged();

private:
    struct Row {
        QSlider* slider = nullptr;
        QDoubleSpinBox* number = nullptr;
        double minimum = 0;
        double step = 1;
        double initial = 0;
    };
    void Reset();

    QFormLayout* form_ = nullptr;
    std::vector<Row> rows_;
};

} // namespace tarvex

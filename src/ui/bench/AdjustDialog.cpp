#include "ui/bench/AdjustDialog.h"

#include <QDialogButtonBox>
#include <QDoubleSpinBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QSignalBlocker>
#include <QSlider>
#include <QVBoxLayout>
#include <algorithm>
#include <cmath>

namespace tarvex {

AdjustDialog::AdjustDialog(const QString& title, const QString& explanation, QWidget* parent)
    : QDialog(parent) {
    setWindowTitle(title);
    auto* layout = new QVBoxLayout(this);
    auto* note = new QLabel(explanation, this);
    note->setWordWrap(true);
    layout->addWidget(note);
    form_ = new QFormLayout;
    layout->addLayout(form_);
    auto* buttons = new QDialogButtonBox(
        QDialogButtonBox::Ok | QDialogButtonBox::Cancel | QDialogButtonBox::Reset, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(buttons->button(QDialogButtonBox::Reset), &QPushButton::clicked, this,
            &AdjustDialog::Reset);
    layout->addWidget(buttons);
    setMinimumWidth(380);
}

int AdjustDialog::AddRow(const QString& label, double minimum, double maximum, double step,
                         double value, const QString& suffix) {
    Row row;
    row.minimum = minimum;
    row.step = step;
    row.initial = value;
    row.slider = new QSlider(Qt::Horizontal, this);
    row.slider->setRange(0, static_cast<int>(std::lround((maximum - minimum) / step)));
    row.slider->setPageStep(std::max(1, row.slider->maximum() / 10));
    row.number = new QDoubleSpinBox(this);
    row.number->setRange(minimum, maximum);
    row.number->setSingleStep(step);
    row.number->setDecimals(step < 1 ? 1 : 0);
    row.number->setSuffix(suffix);
    row.number->setAccelerated(true);
    auto* line = new QHBoxLayout;
    line->addWidget(row.slider, 1);
    line->addWidget(row.number);
    auto* caption = new QLabel(label, this);
    caption->setBuddy(row.slider);
    form_->addRow(caption, line);

    const int index = static_cast<int>(rows_.size());
    rows_.push_back(row);
    connect(row.slider, &QSlider::valueChanged, this, [this, index](int position) {
        const Row& changed = rows_[static_cast<size_t>(index)];
        const QSignalBlocker quiet(changed.number);
        changed.number->setValue(changed.minimum + position * changed.step);
        emit ValuesChanged();
    });
    connect(row.number, &QDoubleSpinBox::valueChanged, this, [this, index](double number) {
        const Row& changed = rows_[static_cast<size_t>(index)];
        // A number between two steps goes to the nearer one.
        const int position =
            static_cast<int>(std::lround((number - changed.minimum) / changed.step));
        const QSignalBlocker quiet(changed.slider);
        changed.slider->setValue(position);
        const double stepped = changed.minimum + position * changed.step;
        if (std::abs(stepped - number) > 1e-9) {
            const QSignalBlocker quietNumber(changed.number);
            changed.number->setValue(stepped);
        }
        emit ValuesChanged();
    });
    SetValue(index, value);
    return index;
}

double AdjustDialog::Value(int row) const {
    return rows_.at(static_cast<size_t>(row)).number->value();
}

void AdjustDialog::SetValue(int row, double value) {
    const Row& changed = rows_.at(static_cast<size_t>(row));
    const int position =
        std::clamp(static_cast<int>(std::lround((value - changed.minimum) / changed.step)), 0,
                   changed.slider->maximum());
    {
        const QSignalBlocker quietSlider(changed.slider);
        const QSignalBlocker quietNumber(changed.number);
        changed.slider->setValue(position);
        changed.number->setValue(changed.minimum + position * changed.step);
    }
    emit ValuesChanged();
}

void AdjustDialog::Reset() {
    for (size_t row = 0; row < rows_.size(); ++row)
        SetValue(static_cast<int>(row), rows_[row].initial);
}

} // namespace tarvex

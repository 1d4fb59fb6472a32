SELECT fiscal_period.fiscal_year, fiscal_period.fiscal_quarter, sum(sales.amount) AS amount
FROM sales
JOIN calendar ON sales.order_date_key = calendar.date_key
JOIN fiscal_period ON calendar.fiscal_period_key = fiscal_period.fiscal_period_key
GROUP BY fiscal_period.fiscal_year, fiscal_period.fiscal_quarter
ORDER BY fiscal_period.fiscal_year, fiscal_period.fiscal_quarter;

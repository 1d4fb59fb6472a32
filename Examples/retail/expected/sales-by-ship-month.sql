SELECT "ship date".calendar_month, sum(sales.amount) AS amount
FROM sales
LEFT JOIN calendar AS "ship date" ON sales.ship_date_key = "ship date".date_key
GROUP BY "ship date".calendar_month
ORDER BY "ship date".calendar_month;
